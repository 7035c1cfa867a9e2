; Tessara's setup program: the program into Program Files, a writable first
; library and the Settings file into the common application data folder,
; Start-menu entries and an uninstaller that Windows lists.
;
;   makensis -DVERSION=9.0.0 -DQUELLE=<the Windows folder> -DAUSGABE=<setup.exe> tessara.nsi
;
; A silent install takes its choices from the command line:
;   Tessara-Setup-<version>.exe /S [/SPRACHE=deutsch|englisch] [/BIBLIOTHEK=<directory>] [/D=<program directory>]

!ifndef VERSION | QUELLE | AUSGABE
  !error "VERSION, QUELLE and AUSGABE must be given with -D"
!endif

; The program is 64-bit, and so is the setup: a 32-bit setup would see the
; 32-bit view of Program Files and of the registry.
Unicode true
Target amd64-unicode
SetCompressor /SOLID lzma
RequestExecutionLevel admin
ManifestDPIAware true

!include MUI2.nsh
!include nsDialogs.nsh
!include LogicLib.nsh
!include FileFunc.nsh

!define PRODUKT "Tessara"
!define HERSTELLER "Vendel"
!define UNINSTALL_KEY "Software\Microsoft\Windows\CurrentVersion\Uninstall\Tessara"
; The machine-wide database list the program keeps for the installation.
!define MASCHINEN_KEY "Software\Tessara\Version_8"
; The Settings file the program falls back to when its own directory holds
; none: the common application data folder, writable for every user.
!define INI_DATEI "$APPDATA\Tessara\Tessara9.0.ini"
!define INI_SEKTION "AllgemeineDaten"
; The built-in Users group by its SID, which is the same in every language
; of Windows ("Benutzer", "Users", ...).
!define BENUTZER_SID "*S-1-5-32-545"

Name "${PRODUKT} ${VERSION}"
OutFile "${AUSGABE}"
InstallDir "$PROGRAMFILES64\Tessara"
InstallDirRegKey HKLM "${UNINSTALL_KEY}" "InstallLocation"
BrandingText "${PRODUKT} ${VERSION}"

VIProductVersion "${VERSION}.0"
VIAddVersionKey /LANG=0 "ProductName" "${PRODUKT}"
VIAddVersionKey /LANG=0 "ProductVersion" "${VERSION}"
VIAddVersionKey /LANG=0 "FileVersion" "${VERSION}"
VIAddVersionKey /LANG=0 "FileDescription" "${PRODUKT} Setup"
VIAddVersionKey /LANG=0 "CompanyName" "${HERSTELLER}"
VIAddVersionKey /LANG=0 "LegalCopyright" "${HERSTELLER}"

Var Sprache
Var Bibliothek
Var hSprache
Var hBibliothek

!define MUI_ABORTWARNING
!insertmacro MUI_PAGE_DIRECTORY
Page custom OptionenZeigen OptionenUebernehmen
!insertmacro MUI_PAGE_INSTFILES
!insertmacro MUI_PAGE_FINISH
!insertmacro MUI_UNPAGE_CONFIRM
!insertmacro MUI_UNPAGE_INSTFILES
; The first language is the one shown when Windows speaks neither.
!insertmacro MUI_LANGUAGE "German"
!insertmacro MUI_LANGUAGE "English"

LangString OptTitel ${LANG_GERMAN} "Sprache und Bibliothek"
LangString OptTitel ${LANG_ENGLISH} "Language and library"
LangString OptUntertitel ${LANG_GERMAN} "Wählen Sie die Sprache des Programms und seine erste Bibliothek."
LangString OptUntertitel ${LANG_ENGLISH} "Choose the program's language and its first library."
LangString OptSprache ${LANG_GERMAN} "Sprache von Tessara:"
LangString OptSprache ${LANG_ENGLISH} "Tessara's language:"
LangString OptBibliothek ${LANG_GERMAN} "Verzeichnis der ersten Bibliothek:"
LangString OptBibliothek ${LANG_ENGLISH} "Directory of the first library:"
LangString OptHinweis ${LANG_GERMAN} "Enthält das Verzeichnis noch keine Bibliothek (dbTessara.mdb), wird die Demo-Bibliothek dorthin kopiert. Eine vorhandene Bibliothek bleibt, wie sie ist."
LangString OptHinweis ${LANG_ENGLISH} "When the directory holds no library yet (dbTessara.mdb), the demo library is copied there. A library already there is left as it is."
LangString OptWaehlen ${LANG_GERMAN} "Verzeichnis der ersten Bibliothek wählen"
LangString OptWaehlen ${LANG_ENGLISH} "Choose the directory of the first library"
LangString OptLeer ${LANG_GERMAN} "Bitte geben Sie ein Verzeichnis für die Bibliothek an."
LangString OptLeer ${LANG_ENGLISH} "Please give a directory for the library."
LangString LinkDeinstallieren ${LANG_GERMAN} "Tessara deinstallieren"
LangString LinkDeinstallieren ${LANG_ENGLISH} "Uninstall Tessara"

; The choices: a command-line option wins, then the Settings file of an
; earlier installation, then the defaults (German, the demo library in the
; common application data folder).
Function .onInit
  SetShellVarContext all
  ${GetParameters} $R0

  ReadINIStr $Sprache "${INI_DATEI}" "${INI_SEKTION}" "Sprache"
  ClearErrors
  ${GetOptions} $R0 "/SPRACHE=" $R1
  ${IfNot} ${Errors}
    StrCpy $Sprache $R1
  ${EndIf}
  Call SpracheBereinigen

  ; An entry "0" is how the program writes "no library".
  ReadINIStr $Bibliothek "${INI_DATEI}" "${INI_SEKTION}" "DbVerzeichnis0"
  ${If} $Bibliothek == "0"
    StrCpy $Bibliothek ""
  ${EndIf}
  ClearErrors
  ${GetOptions} $R0 "/BIBLIOTHEK=" $R1
  ${IfNot} ${Errors}
  ${AndIf} $R1 != ""
    StrCpy $Bibliothek $R1
  ${EndIf}
  ${If} $Bibliothek == ""
    StrCpy $Bibliothek "$APPDATA\Tessara\Demo"
  ${EndIf}
FunctionEnd

; The program knows these two languages by their caption files
; (txtBeschriftTessara9.0*_deutsch.txt, *_englisch.txt); anything else would
; leave it without captions, so it becomes the program's own default.
Function SpracheBereinigen
  ${If} $Sprache == "englisch"  ; NSIS compares without regard to case
    StrCpy $Sprache "englisch"
  ${Else}
    StrCpy $Sprache "deutsch"
  ${EndIf}
FunctionEnd

Function OptionenZeigen
  !insertmacro MUI_HEADER_TEXT "$(OptTitel)" "$(OptUntertitel)"
  nsDialogs::Create 1018
  Pop $0
  ${If} $0 == error
    Abort
  ${EndIf}

  ${NSD_CreateLabel} 0 0 100% 10u "$(OptSprache)"
  Pop $0
  ${NSD_CreateDropList} 0 12u 40% 60u ""
  Pop $hSprache
  ; Chosen by name, whatever its case: the list shows "Deutsch", the
  ; Settings file says "deutsch".
  ${NSD_CB_AddString} $hSprache "Deutsch"
  ${NSD_CB_AddString} $hSprache "Englisch"
  ${NSD_CB_SelectString} $hSprache $Sprache

  ${NSD_CreateLabel} 0 36u 100% 10u "$(OptBibliothek)"
  Pop $0
  ${NSD_CreateDirRequest} 0 48u -65u 12u "$Bibliothek"
  Pop $hBibliothek
  ${NSD_CreateBrowseButton} -60u 47u 60u 14u "$(^BrowseBtn)"
  Pop $0
  ${NSD_OnClick} $0 BibliothekWaehlen
  ${NSD_CreateLabel} 0 70u 100% 30u "$(OptHinweis)"
  Pop $0

  nsDialogs::Show
FunctionEnd

Function BibliothekWaehlen
  ${NSD_GetText} $hBibliothek $0
  nsDialogs::SelectFolderDialog "$(OptWaehlen)" $0
  Pop $0
  ${If} $0 != error
    ${NSD_SetText} $hBibliothek $0
  ${EndIf}
FunctionEnd

Function OptionenUebernehmen
  ${NSD_GetText} $hSprache $Sprache
  Call SpracheBereinigen
  ${NSD_GetText} $hBibliothek $Bibliothek
  ${If} $Bibliothek == ""
    MessageBox MB_ICONEXCLAMATION|MB_OK "$(OptLeer)"
    Abort
  ${EndIf}
FunctionEnd

; Every user works in the library and the Settings file, but what an
; administrator's setup creates in the common application data folder is
; only readable for them: the Users group may change it.
!macro BenutzerDuerfenAendern VERZEICHNIS
  nsExec::ExecToLog '"$SYSDIR\icacls.exe" "${VERZEICHNIS}" /grant ${BENUTZER_SID}:(OI)(CI)M /T /Q'
  Pop $0
  ${If} $0 != 0
    DetailPrint "icacls ${VERZEICHNIS}: $0"
  ${EndIf}
!macroend

Section
  SetOutPath "$INSTDIR"
  File "${QUELLE}/tessara.exe"
  File "${QUELLE}/tessara-cli.exe"
  File "${QUELLE}/*.dll"
  File "${QUELLE}/txtBeschrift*.txt"
  File "${QUELLE}/txtPrefix.txt"
  File "${QUELLE}/frei2.sld"
  File "${QUELLE}/InfoVersion.lis"
  SetOutPath "$INSTDIR\platforms"
  File "${QUELLE}/platforms/*.dll"
  SetOutPath "$INSTDIR\styles"
  File "${QUELLE}/styles/*.dll"
  SetOutPath "$INSTDIR\translations"
  File /nonfatal "${QUELLE}/translations/*.qm"
  WriteUninstaller "$INSTDIR\uninstall.exe"

  ; The shortcuts start in the program directory, where it finds its files.
  SetOutPath "$INSTDIR"
  CreateDirectory "$SMPROGRAMS\Tessara"
  CreateShortcut "$SMPROGRAMS\Tessara\Tessara.lnk" "$INSTDIR\tessara.exe"
  CreateShortcut "$SMPROGRAMS\Tessara\$(LinkDeinstallieren).lnk" "$INSTDIR\uninstall.exe"

  CreateDirectory "$APPDATA\Tessara"
  !insertmacro BenutzerDuerfenAendern "$APPDATA\Tessara"

  ; A library already in the directory is the user's: a second setup, or a
  ; library on a shared drive, is never overwritten by the demo.
  ${IfNot} ${FileExists} "$Bibliothek\dbTessara.mdb"
    CreateDirectory "$Bibliothek"
    !insertmacro BenutzerDuerfenAendern "$Bibliothek"
    SetOutPath "$Bibliothek"
    File /r "${QUELLE}/Demo/*.*"
    SetOutPath "$INSTDIR"
  ${EndIf}

  ; WriteINIStr writes as the program's own INI code does: in the ANSI code
  ; page, with CRLF line ends, keeping every other line of an existing file.
  WriteINIStr "${INI_DATEI}" "${INI_SEKTION}" "Sprache" "$Sprache"
  WriteINIStr "${INI_DATEI}" "${INI_SEKTION}" "DbVerzeichnis0" "$Bibliothek"

  WriteRegStr HKLM "${UNINSTALL_KEY}" "DisplayName" "${PRODUKT}"
  WriteRegStr HKLM "${UNINSTALL_KEY}" "DisplayVersion" "${VERSION}"
  WriteRegStr HKLM "${UNINSTALL_KEY}" "DisplayIcon" "$INSTDIR\tessara.exe,0"
  WriteRegStr HKLM "${UNINSTALL_KEY}" "Publisher" "${HERSTELLER}"
  WriteRegStr HKLM "${UNINSTALL_KEY}" "InstallLocation" "$INSTDIR"
  WriteRegStr HKLM "${UNINSTALL_KEY}" "UninstallString" '"$INSTDIR\uninstall.exe"'
  WriteRegStr HKLM "${UNINSTALL_KEY}" "QuietUninstallString" '"$INSTDIR\uninstall.exe" /S'
  WriteRegDWORD HKLM "${UNINSTALL_KEY}" "NoModify" 1
  WriteRegDWORD HKLM "${UNINSTALL_KEY}" "NoRepair" 1
  ${GetSize} "$INSTDIR" "/S=0K" $0 $1 $2
  IntFmt $0 "0x%08X" $0
  WriteRegDWORD HKLM "${UNINSTALL_KEY}" "EstimatedSize" $0
SectionEnd

Function un.onInit
  SetShellVarContext all
FunctionEnd

; The files go by the names and patterns they were installed by, so that
; anything else in the directory keeps it from being removed. The libraries and the
; Settings file in the common application data folder are the user's data
; and stay.
Section "Uninstall"
  Delete "$INSTDIR\tessara.exe"
  Delete "$INSTDIR\tessara-cli.exe"
  Delete "$INSTDIR\*.dll"
  Delete "$INSTDIR\txtBeschrift*.txt"
  Delete "$INSTDIR\txtPrefix.txt"
  Delete "$INSTDIR\frei2.sld"
  ; the host's menu files, written by the program at its start
  Delete "$INSTDIR\tessara.mnu"
  Delete "$INSTDIR\tessara.mnl"
  Delete "$INSTDIR\itessara.mnu"
  Delete "$INSTDIR\itessara.mnl"
  Delete "$INSTDIR\InfoVersion.lis"
  Delete "$INSTDIR\platforms\*.dll"
  Delete "$INSTDIR\styles\*.dll"
  Delete "$INSTDIR\translations\*.qm"
  Delete "$INSTDIR\uninstall.exe"
  RMDir "$INSTDIR\platforms"
  RMDir "$INSTDIR\styles"
  RMDir "$INSTDIR\translations"
  RMDir "$INSTDIR"

  RMDir /r "$SMPROGRAMS\Tessara"

  DeleteRegKey HKLM "${UNINSTALL_KEY}"
  DeleteRegKey HKLM "${MASCHINEN_KEY}"
  DeleteRegKey /ifempty HKLM "Software\Tessara"
  ; The entry class that tessara.exe registers for its user at each start.
  DeleteRegKey HKCU "Software\Classes\Tessara_8_5.clsTessaraStart"
  DeleteRegKey HKCU "Software\Classes\CLSID\{C5A2E435-1490-4148-91BF-05AF634CB7D8}"
  ; where a system that does not merge the user's classes found it
  DeleteRegKey HKCR "Tessara_8_5.clsTessaraStart"
  DeleteRegKey HKCR "CLSID\{C5A2E435-1490-4148-91BF-05AF634CB7D8}"
SectionEnd
