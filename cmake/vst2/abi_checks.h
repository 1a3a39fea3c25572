/* SPDX-License-Identifier: GPL-3.0-or-later
 * What a 64-bit VST 2.4 host relies on, checked wherever the header is used. Appended to the build's copy of fst.h. */
#ifdef __cplusplus
#define ZARNO_AT(type, member, offset) \
    static_assert(__builtin_offsetof(type, member) == (offset), #type "::" #member)

static_assert(effSetBypass == 44 && effGetTailSize == 52 && effKeysRequired == 57 && effGetSpeakerArrangement == 69 &&
                  effSetProcessPrecision == 77 && effGetNumMidiInputChannels == 78 && effGetNumMidiOutputChannels == 79,
              "opcodes a host sends");
static_assert(audioMasterIOChanged == 13 && audioMasterSizeWindow == 15 && audioMasterGetCurrentProcessLevel == 23 &&
                  audioMasterVendorSpecific == 35 && audioMasterUpdateDisplay == 42,
              "opcodes a plug-in sends");
static_assert(kVstPinIsActive == 1 && kVstPinIsStereo == 2 && kVstPinUseSpeaker == 4, "flags of a pin");
static_assert(kSpeakerArrStereo == 1 && kSpeakerArr51 == 15 && kSpeakerLfe2 == 19, "speakers");

ZARNO_AT(AEffect, dispatcher, 8);
ZARNO_AT(AEffect, numPrograms, 40);
ZARNO_AT(AEffect, flags, 56);
ZARNO_AT(AEffect, resvd1, 64);
ZARNO_AT(AEffect, initialDelay, 80);
ZARNO_AT(AEffect, object, 96);
ZARNO_AT(AEffect, uniqueID, 112);
ZARNO_AT(AEffect, processReplacing, 120);
static_assert(sizeof(AEffect) == 192, "AEffect");

ZARNO_AT(VstMidiEvent, midiData, 24);
static_assert(sizeof(VstMidiEvent) == 32, "VstMidiEvent");
ZARNO_AT(VstMidiSysexEvent, dumpBytes, 16);
ZARNO_AT(VstMidiSysexEvent, sysexDump, 32);
ZARNO_AT(VstEvents, events, 16);

ZARNO_AT(VstTimeInfo, smpteOffset, 72);
ZARNO_AT(VstTimeInfo, smpteFrameRate, 76);
ZARNO_AT(VstTimeInfo, flags, 84);
static_assert(sizeof(VstTimeInfo) == 88, "VstTimeInfo");

ZARNO_AT(VstSpeakerProperties, type, 80);
static_assert(sizeof(VstSpeakerProperties) == 112, "VstSpeakerProperties");
static_assert(sizeof(VstSpeakerArrangement) == 8 + 8 * 112, "VstSpeakerArrangement");
ZARNO_AT(VstPinProperties, shortLabel, 72);
static_assert(sizeof(VstPinProperties) == 128, "VstPinProperties");
#undef ZARNO_AT
#endif
