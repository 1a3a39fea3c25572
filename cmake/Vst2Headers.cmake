# SPDX-License-Identifier: GPL-3.0-or-later
# The plug-in interface headers, made from Debian's fst-dev into the build tree. JUCE looks for
# pluginterfaces/vst2.x/aeffect.h and aeffectx.h; both forward to a copy of fst.h. That header leaves some numbers
# open (it gives them made-up values) and some structures short; the copy has the plain VST 2.4 values where they
# are known, and ends with checks of every number our build relies on.

set(fstFolder /usr/include/pluginterfaces/fst CACHE PATH "Folder of fst.h")
set(zarnoVst2Folder ${CMAKE_BINARY_DIR}/vst2)

# Replaces one text that must be there: a newer fst.h that no longer has it stops the configuration, so that
# nobody builds with a correction silently gone.
function(zarno_correct text before after)
    string(FIND "${${text}}" "${before}" position)
    if(position EQUAL -1)
        message(FATAL_ERROR "fst.h has changed, this correction no longer applies: ${before}")
    endif()
    string(REPLACE "${before}" "${after}" corrected "${${text}}")
    set(${text} "${corrected}" PARENT_SCOPE)
endfunction()

# Gives names of one kind, "Name=value ...", their numbers.
function(zarno_number text kind)
    foreach(pair IN LISTS ARGN)
        string(REPLACE "=" ";" pair ${pair})
        list(GET pair 0 name)
        list(GET pair 1 value)
        zarno_correct(${text} "${kind}_UNKNOWN(${name})," "${kind}(${name}, ${value}),")
    endforeach()
    set(${text} "${${text}}" PARENT_SCOPE)
endfunction()

# Semicolons and brackets of C are list syntax to CMake; they travel as other characters.
file(READ ${fstFolder}/fst.h fst)
string(REPLACE ";" "\t:\t" fst "${fst}")
string(REPLACE "[" "\t(\t" fst "${fst}")
string(REPLACE "]" "\t)\t" fst "${fst}")

zarno_number(fst FST_HOST_OPCODE
    Idle=3 PinConnected=4 SetTime=9 GetNumAutomatableParameters=11 GetParameterQuantization=12 IOChanged=13
    NeedIdle=14 GetInputLatency=18 GetOutputLatency=19 GetAutomationState=24 VendorSpecific=35 GetLanguage=38
    GetDirectory=41 UpdateDisplay=42)
zarno_number(fst FST_EFFECT_OPCODE
    EditDraw=16 EditMouse=17 EditTop=20 EditSleep=21 ConnectInput=31 ConnectOutput=32 SetBypass=44 GetTailSize=52
    Idle=53 KeysRequired=57 BeginSetProgram=67 EndSetProgram=68 GetNumMidiInputChannels=78
    GetNumMidiOutputChannels=79)
zarno_number(fst FST_SPEAKER
    ArrStereoSurround=2 ArrStereoCenter=3 ArrStereoSide=4 ArrStereoCLfe=5 Arr30Cine=6 Arr30Music=7 Arr31Cine=8
    Arr31Music=9 Arr40Cine=10 Arr40Music=11 Arr41Cine=12 Arr41Music=13 Arr50=14 Arr51=15 Arr60Cine=16 Arr60Music=17
    Arr61Cine=18 Arr61Music=19 Arr70Cine=20 Arr70Music=21 Arr71Cine=22 Arr71Music=23 Arr80Cine=24 Arr80Music=25
    Arr81Cine=26 Arr81Music=27 C=3 Lfe=4 Ls=5 Rs=6 Lc=7 Rc=8 S=9 Sl=10 Sr=11 Tm=12 Tfl=13 Tfc=14 Tfr=15 Trl=16
    Trc=17 Trr=18 Lfe2=19 Undefined=0x7fffffff)
zarno_number(fst FST_CONSTANT
    Smpte24fps=0 Smpte25fps=1 Smpte2997fps=2 Smpte30fps=3 Smpte2997dfps=4 Smpte30dfps=5 SmpteFilm16mm=6
    SmpteFilm35mm=7 Smpte239fps=10 Smpte249fps=11 Smpte599fps=12 LangEnglish=1)
zarno_correct(fst "FST_CONSTANT_UNKNOWN(Smpte60fps)" "FST_CONSTANT(Smpte60fps, 13)")
zarno_correct(fst "FST_CONSTANT_UNKNOWN(ProcessLevelUser)" "FST_CONSTANT(ProcessLevelUser, 1)")
zarno_correct(fst "FST_FLAG_UNKNOWN(AutomationReading)" "FST_FLAG(AutomationReading, 7)")
zarno_correct(fst "FST_FLAG_UNKNOWN(AutomationWriting)" "FST_FLAG(AutomationWriting, 6)")
zarno_correct(fst "FST_FLAG_UNKNOWN(PinIsActive)" "FST_FLAG(PinIsActive, 0)")
zarno_correct(fst "FST_FLAG_UNKNOWN(PinIsStereo)" "FST_FLAG(PinIsStereo, 1)")
zarno_correct(fst "FST_FLAG_UNKNOWN(PinUseSpeaker)" "FST_FLAG(PinUseSpeaker, 2)")

# Structures: the arrangement has room for eight speakers (JUCE counts on it when it allocates), the SMPTE fields
# stand before the flags, lengths of system exclusive data have 32 bits, records end with reserved bytes.
zarno_correct(fst "t_fstSpeakerProperties speakers\t(\t\t)\t" "t_fstSpeakerProperties speakers\t(\t8\t)\t")
zarno_correct(fst "int FST_UNKNOWN(currentBar), FST_UNKNOWN(magic)" "int smpteOffset, smpteFrameRate")
zarno_correct(fst "  FST_UNKNOWN(int) smpteFrameRate\t:\t /* int32 // ? */\n  FST_UNKNOWN(int) smpteOffset\t:\t /* int32 // ? */\n" "")
zarno_correct(fst "t_fstPtrInt dumpBytes" "t_fstInt32 dumpBytes")
zarno_correct(fst "char shortLabel\t(\t8\t)\t\t:\t" "char shortLabel\t(\t8\t)\t\t:\t char future\t(\t48\t)\t\t:\t")
zarno_correct(fst "FST_UNKNOWN(t_fstPtrInt) flags" "t_fstInt32 flags")
zarno_correct(fst "AEffectProcessDoubleProc processDoubleReplacing\t:\t"
    "AEffectProcessDoubleProc processDoubleReplacing\t:\t char future\t(\t56\t)\t\t:\t")

# Its reminders to its own authors would be printed at each use.
string(REGEX REPLACE "# warning [^\n]*" "" fst "${fst}")
string(REPLACE "\t(\t" "[" fst "${fst}")
string(REPLACE "\t)\t" "]" fst "${fst}")
string(REPLACE "\t:\t" ";" fst "${fst}")

file(READ ${CMAKE_CURRENT_LIST_DIR}/vst2/abi_checks.h checks)
file(CONFIGURE OUTPUT ${zarnoVst2Folder}/pluginterfaces/vst2.x/fst.h @ONLY CONTENT
"/* Made from fst.h of Debian's fst-dev with corrections by Zarno Sampler Player's build; same licence. */
@fst@
@checks@")
foreach(header aeffect.h aeffectx.h)
    file(CONFIGURE OUTPUT ${zarnoVst2Folder}/pluginterfaces/vst2.x/${header} CONTENT
"#define FST2VST 1
#include \"fst.h\"
")
endforeach()

add_library(zarno_vst2_headers INTERFACE)
target_include_directories(zarno_vst2_headers SYSTEM INTERFACE ${zarnoVst2Folder})
