; The installer for Windows. scripts/package gives it VERSION, TREE (what is installed), OUT, LISTS (the lists of files, made
; from TREE, so that the uninstaller takes away what was put in place and nothing that the user has put beside it).
;   setup.exe /S /D=C:\folder      installs without a question
;   uninstall.exe /S               takes it away again
Unicode true
SetCompressor /SOLID lzma
SetDateSave off
Name "KivToolsRePack ${VERSION}"
OutFile "${OUT}"
RequestExecutionLevel admin
InstallDir "$PROGRAMFILES32\KivToolsRePack"
InstallDirRegKey HKLM "Software\KivToolsRePack" "Folder"
ShowInstDetails show
LicenseData "${TREE}\LICENSE.txt"

!define UNINSTALL "Software\Microsoft\Windows\CurrentVersion\Uninstall\KivToolsRePack"
!define PROGRAM "Software\Microsoft\Windows\CurrentVersion\App Paths\kivtools.exe"

LoadLanguageFile "${NSISDIR}\Contrib\Language files\English.nlf"
LoadLanguageFile "${NSISDIR}\Contrib\Language files\Romanian.nlf"
LangString PartProgram ${LANG_ENGLISH} "Library and command line"
LangString PartProgram ${LANG_ROMANIAN} "Biblioteca și linia de comandă"
LangString PartDevelopment ${LANG_ENGLISH} "For developers"
LangString PartDevelopment ${LANG_ROMANIAN} "Pentru programatori"
VIProductVersion "${VERSION}.0"
VIAddVersionKey /LANG=${LANG_ENGLISH} "ProductName" "KivToolsRePack"
VIAddVersionKey /LANG=${LANG_ENGLISH} "ProductVersion" "${VERSION}"
VIAddVersionKey /LANG=${LANG_ENGLISH} "FileVersion" "${VERSION}.0"
VIAddVersionKey /LANG=${LANG_ENGLISH} "FileDescription" "KivToolsRePack, installer"
VIAddVersionKey /LANG=${LANG_ENGLISH} "LegalCopyright" "The KivToolsRePack authors, MIT licence"

Page license
Page components
Page directory
Page instfiles
UninstPage uninstConfirm
UninstPage instfiles

Function .onInit
  SetShellVarContext all
FunctionEnd

Function un.onInit
  SetShellVarContext all
FunctionEnd

Section "$(PartProgram)"
  SectionIn RO
  ; An older version goes first: a file that this one lacks would stay for ever.
  ReadRegStr $0 HKLM "Software\KivToolsRePack" "Folder"
  IfFileExists "$0\uninstall.exe" 0 first
  ExecWait '"$0\uninstall.exe" /S _?=$0'
first:
  !include "${LISTS}\install-Runtime.nsh"
  SetOutPath "$INSTDIR"
  WriteUninstaller "$INSTDIR\uninstall.exe"
  WriteRegStr HKLM "Software\KivToolsRePack" "Folder" "$INSTDIR"
  WriteRegStr HKLM "${PROGRAM}" "" "$INSTDIR\bin\kivtools.exe"
  WriteRegStr HKLM "${UNINSTALL}" "DisplayName" "KivToolsRePack"
  WriteRegStr HKLM "${UNINSTALL}" "DisplayVersion" "${VERSION}"
  WriteRegStr HKLM "${UNINSTALL}" "Publisher" "The KivToolsRePack authors"
  WriteRegStr HKLM "${UNINSTALL}" "InstallLocation" "$INSTDIR"
  WriteRegStr HKLM "${UNINSTALL}" "UninstallString" '"$INSTDIR\uninstall.exe"'
  WriteRegStr HKLM "${UNINSTALL}" "QuietUninstallString" '"$INSTDIR\uninstall.exe" /S'
  WriteRegDWORD HKLM "${UNINSTALL}" "EstimatedSize" ${KILOBYTES}
  WriteRegDWORD HKLM "${UNINSTALL}" "NoModify" 1
  WriteRegDWORD HKLM "${UNINSTALL}" "NoRepair" 1
SectionEnd

Section "$(PartDevelopment)"
  !include "${LISTS}\install-Development.nsh"
SectionEnd

Section "Uninstall"
  !include "${LISTS}\uninstall.nsh"
  Delete "$INSTDIR\uninstall.exe"
  SetOutPath "$TEMP"
  RMDir "$INSTDIR"
  DeleteRegKey HKLM "${UNINSTALL}"
  DeleteRegKey HKLM "${PROGRAM}"
  DeleteRegKey HKLM "Software\KivToolsRePack"
SectionEnd
