; SPDX-License-Identifier: GPL-3.0-or-later
; The installer for Windows. scripts/package passes VERSION, FILES (the stripped files), LIBRARY (the demo library),
; SOURCE (this source tree) and OUT.
Unicode true
!include MUI2.nsh
!include x64.nsh
!include LogicLib.nsh
!include FileFunc.nsh
!include Sections.nsh
!define NAME "Zarno Sampler Player"
!define PRODUCT ZarnoSamplerPlayer
!define UNINSTALL "Software\Microsoft\Windows\CurrentVersion\Uninstall\${PRODUCT}"

Name "${NAME} ${VERSION}"
OutFile "${OUT}"
InstallDir "$PROGRAMFILES64\${NAME}"
RequestExecutionLevel admin
SetCompressor /SOLID lzma
Var Vst2Folder

!insertmacro MUI_PAGE_LICENSE "${SOURCE}\LICENSE"
!insertmacro MUI_PAGE_COMPONENTS
!insertmacro MUI_PAGE_DIRECTORY
!define MUI_PAGE_CUSTOMFUNCTION_PRE skipWithoutVst2
!define MUI_PAGE_HEADER_TEXT "VST 2.4 folder"
!define MUI_PAGE_HEADER_SUBTEXT "Where does your host look for VST 2 plug-ins?"
!define MUI_DIRECTORYPAGE_TEXT_TOP "The VST 2.4 plug-in and its library go into this folder. REAPER, Live, FL Studio and others show it in their preferences."
!define MUI_DIRECTORYPAGE_VARIABLE $Vst2Folder
!insertmacro MUI_PAGE_DIRECTORY
!insertmacro MUI_PAGE_INSTFILES
!insertmacro MUI_UNPAGE_CONFIRM
!insertmacro MUI_UNPAGE_INSTFILES
!insertmacro MUI_LANGUAGE English

; The demo library belongs beside each format: a plug-in looks beside itself.
!macro Library folder
    SetOutPath "${folder}\${PRODUCT}.instruments"
    File "${LIBRARY}\*.*"
!macroend
; Deletes what was installed, and folders only when nothing of the user's is in them.
!macro RemoveLibrary folder
    Delete "${folder}\${PRODUCT}.instruments\Lantern Tines.zse"
    RMDir "${folder}\${PRODUCT}.instruments"
!macroend

Section "VST3 plug-in" vst3
    SetOutPath "$COMMONFILES64\VST3\${PRODUCT}.vst3"
    File /r "${FILES}\${PRODUCT}.vst3\*.*"
    !insertmacro Library "$COMMONFILES64\VST3"
SectionEnd

Section "VST 2.4 plug-in" vst2
    SetOutPath "$Vst2Folder"
    File "${FILES}\${PRODUCT}.dll"
    !insertmacro Library "$Vst2Folder"
SectionEnd

Section "Program and command line" programs
    SetOutPath "$INSTDIR"
    File "${FILES}\${PRODUCT}.exe"
    File "${FILES}\zarno.exe"
    !insertmacro Library "$INSTDIR"
    SetOutPath "$INSTDIR"
    CreateShortcut "$SMPROGRAMS\${NAME}.lnk" "$INSTDIR\${PRODUCT}.exe"
SectionEnd

Section -always
    SetOutPath "$INSTDIR"
    File "${SOURCE}\LICENSE"
    File "${SOURCE}\NOTICE"
    File "${SOURCE}\CHANGELOG.md"
    File "${SOURCE}\packaging\INSTALL.txt"
    WriteUninstaller "$INSTDIR\Uninstall.exe"
    WriteRegStr HKLM "${UNINSTALL}" DisplayName "${NAME}"
    WriteRegStr HKLM "${UNINSTALL}" DisplayVersion "${VERSION}"
    WriteRegStr HKLM "${UNINSTALL}" Publisher "Zarno"
    WriteRegStr HKLM "${UNINSTALL}" InstallLocation "$INSTDIR"
    WriteRegStr HKLM "${UNINSTALL}" UninstallString '"$INSTDIR\Uninstall.exe"'
    WriteRegStr HKLM "${UNINSTALL}" Vst2Folder "$Vst2Folder"
SectionEnd

Section Uninstall
    ReadRegStr $Vst2Folder HKLM "${UNINSTALL}" Vst2Folder
    RMDir /r "$COMMONFILES64\VST3\${PRODUCT}.vst3"
    !insertmacro RemoveLibrary "$COMMONFILES64\VST3"
    ${If} $Vst2Folder != ""
        Delete "$Vst2Folder\${PRODUCT}.dll"
        !insertmacro RemoveLibrary "$Vst2Folder"
        RMDir "$Vst2Folder"
    ${EndIf}
    Delete "$SMPROGRAMS\${NAME}.lnk"
    Delete "$INSTDIR\${PRODUCT}.exe"
    Delete "$INSTDIR\zarno.exe"
    !insertmacro RemoveLibrary "$INSTDIR"
    Delete "$INSTDIR\LICENSE"
    Delete "$INSTDIR\NOTICE"
    Delete "$INSTDIR\CHANGELOG.md"
    Delete "$INSTDIR\INSTALL.txt"
    Delete "$INSTDIR\Uninstall.exe"
    RMDir "$INSTDIR"
    DeleteRegKey HKLM "${UNINSTALL}"
SectionEnd

; Silent installations say it as /VST2=FOLDER.
Function .onInit
    ${IfNot} ${RunningX64}
        MessageBox MB_OK|MB_ICONSTOP "${NAME} needs a 64-bit Windows." /SD IDOK
        Abort
    ${EndIf}
    SetRegView 64
    SetShellVarContext all
    StrCpy $Vst2Folder "$PROGRAMFILES64\VSTPlugins"
    ${GetParameters} $0
    ClearErrors
    ${GetOptions} $0 "/VST2=" $1
    ${IfNot} ${Errors}
        StrCpy $Vst2Folder $1
    ${EndIf}
FunctionEnd

Function un.onInit
    SetRegView 64
    SetShellVarContext all
FunctionEnd

Function skipWithoutVst2
    ${IfNot} ${SectionIsSelected} ${vst2}
        Abort
    ${EndIf}
FunctionEnd
