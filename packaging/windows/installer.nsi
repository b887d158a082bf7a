; The installer. packaging/windows/build says where things are:
;   VERSION, STAGE (what is installed), LISTS (install.nsh and remove.nsh), ICON, OUTPUT
;
; Arguments of the installer:
;   /S             without questions        /SERVICE=URL   address of the service
;   /AllUsers      for everybody on this machine; needs administrator rights
;   /CurrentUser   for this user only, which is the default
;   /Desktop       with an icon on the desktop
;   /D=FOLDER      where to; must come last, without quotes
; Arguments of the uninstaller: /S, and /Purge to remove what the program keeps for this user, too.
; Exit codes of both: 0 done, 1 cancelled, 2 could not (the program runs, or the rights lack).
Unicode true
Target amd64-unicode
SetCompressor /SOLID lzma
ManifestDPIAware true
RequestExecutionLevel user

!define NAME "Tessavo Tools"
!define PROGRAM "tessavo-tools.exe"
!define UNINSTALLER "uninstall.exe"
!define SETTINGS "tessavo-tools.ini"
!define UNINSTALL_KEY "Software\Microsoft\Windows\CurrentVersion\Uninstall\TessavoTools"
!define USER_SETTINGS "tessavo_tools"

!include MUI2.nsh
!include nsDialogs.nsh
!include FileFunc.nsh
!include LogicLib.nsh
!include WinMessages.nsh
!include x64.nsh

Name "${NAME}"
OutFile "${OUTPUT}"
BrandingText "${NAME} ${VERSION}"
VIProductVersion "${VERSION}.0"
VIAddVersionKey /LANG=0 "ProductName" "${NAME}"
VIAddVersionKey /LANG=0 "CompanyName" "Tessavo"
VIAddVersionKey /LANG=0 "FileDescription" "${NAME} Setup"
VIAddVersionKey /LANG=0 "FileVersion" "${VERSION}"
VIAddVersionKey /LANG=0 "ProductVersion" "${VERSION}"
VIAddVersionKey /LANG=0 "LegalCopyright" "Tessavo"

!define MUI_ICON "${ICON}"
!define MUI_UNICON "${ICON}"
!define MUI_ABORTWARNING

Var Everybody   ; 1: for all users of the machine
Var Service     ; address of the service; empty leaves what is there
Var DesktopIcon ; 1: wanted
Var Purge       ; 1: the uninstaller removes the user's saved data, too
Var OnlyMe
Var Everyone
Var AddressField
Var IconBox
Var PurgeBox

Page custom optionsPage leaveOptionsPage
!insertmacro MUI_PAGE_DIRECTORY
!insertmacro MUI_PAGE_INSTFILES
!define MUI_FINISHPAGE_RUN "$INSTDIR\${PROGRAM}"
!insertmacro MUI_PAGE_FINISH

UninstPage custom un.purgePage un.leavePurgePage
!insertmacro MUI_UNPAGE_INSTFILES

!insertmacro MUI_LANGUAGE "SimpChinese"
!insertmacro MUI_LANGUAGE "English"

LangString optionsTitle ${LANG_SIMPCHINESE} "安装选项"
LangString optionsTitle ${LANG_ENGLISH} "Options"
LangString optionsText ${LANG_SIMPCHINESE} "为谁安装，以及连接哪个服务。"
LangString optionsText ${LANG_ENGLISH} "For whom to install, and which service to use."
LangString onlyMeText ${LANG_SIMPCHINESE} "仅为我安装（不需要管理员权限）"
LangString onlyMeText ${LANG_ENGLISH} "Just for me (needs no administrator rights)"
LangString everyoneText ${LANG_SIMPCHINESE} "为这台电脑的所有用户安装（需要管理员权限）"
LangString everyoneText ${LANG_ENGLISH} "For all users of this computer (needs administrator rights)"
LangString addressText ${LANG_SIMPCHINESE} "服务地址，例如 https://studio.example："
LangString addressText ${LANG_ENGLISH} "Address of the service, such as https://studio.example:"
LangString addressWrong ${LANG_SIMPCHINESE} "服务地址必须以 https:// 或 http:// 开头，且不能含有空格。"
LangString addressWrong ${LANG_ENGLISH} "The address of the service must start with https:// or http:// and hold no blanks."
LangString iconText ${LANG_SIMPCHINESE} "在桌面上创建图标"
LangString iconText ${LANG_ENGLISH} "Create an icon on the desktop"
LangString running ${LANG_SIMPCHINESE} "${NAME} 正在运行。请先关闭它，然后点击“重试”。"
LangString running ${LANG_ENGLISH} "${NAME} is running. Please close it, then press Retry."
LangString noRights ${LANG_SIMPCHINESE} "为所有用户安装或卸载需要管理员权限。"
LangString noRights ${LANG_ENGLISH} "Installing or removing for all users needs administrator rights."
LangString notWritten ${LANG_SIMPCHINESE} "无法写入设置文件：$INSTDIR\${SETTINGS}"
LangString notWritten ${LANG_ENGLISH} "The settings could not be written: $INSTDIR\${SETTINGS}"
LangString purgeTitle ${LANG_SIMPCHINESE} "卸载 ${NAME}"
LangString purgeTitle ${LANG_ENGLISH} "Remove ${NAME}"
LangString purgeIntro ${LANG_SIMPCHINESE} "将从以下文件夹卸载 ${NAME}：$\r$\n$INSTDIR$\r$\n$\r$\n照片和订单不受影响。"
LangString purgeIntro ${LANG_ENGLISH} "${NAME} is going to be removed from$\r$\n$INSTDIR$\r$\n$\r$\nPhotos and orders are not touched."
LangString purgeText ${LANG_SIMPCHINESE} "同时删除我保存的登录信息、导入记录和服务地址"
LangString purgeText ${LANG_ENGLISH} "Also remove my saved login, the record of imports and the address of the service"

; Whoever may write for the machine; NO is the label to go to otherwise.
!macro needAdministrator NO
    UserInfo::GetAccountType
    Pop $0
    StrCmp $0 "Admin" +2
    Goto ${NO}
!macroend

; Where this user, or everybody, keeps menus, keys and programs.
!macro useContext
    SetRegView 64
    ${If} $Everybody == 1
        SetShellVarContext all
    ${Else}
        SetShellVarContext current
    ${EndIf}
!macroend

; A program that runs cannot be opened for writing.
!macro waitUntilClosed
    ${Do}
        ${IfNot} ${FileExists} "$INSTDIR\${PROGRAM}"
            ${ExitDo}
        ${EndIf}
        ClearErrors
        FileOpen $0 "$INSTDIR\${PROGRAM}" a
        ${IfNot} ${Errors}
            FileClose $0
            ${ExitDo}
        ${EndIf}
        ${If} ${Silent}
            SetErrorLevel 2
            Abort
        ${EndIf}
        MessageBox MB_RETRYCANCEL|MB_ICONEXCLAMATION "$(running)" IDRETRY +3
            SetErrorLevel 1
            Abort
    ${Loop}
!macroend

; Starts this very program again with the rights that it lacks, and ends.
!macro restartAsAdministrator PROGRAM_FILE ARGUMENTS
    ClearErrors
    ExecShell "runas" "${PROGRAM_FILE}" "${ARGUMENTS}"
    ${If} ${Errors}
        MessageBox MB_OK|MB_ICONEXCLAMATION "$(noRights)"
    ${Else}
        Quit
    ${EndIf}
!macroend

Function defaultFolder
    ${If} $Everybody == 1
        StrCpy $1 "$PROGRAMFILES64\${NAME}"
    ${Else}
        StrCpy $1 "$LOCALAPPDATA\Programs\${NAME}"
    ${EndIf}
    ReadRegStr $0 SHCTX "${UNINSTALL_KEY}" "InstallLocation"
    ${If} $0 != ""
        StrCpy $1 $0
    ${EndIf}
FunctionEnd

; Pushes 1 when $Service may be an address, 0 when it may not.
Function checkAddress
    StrCpy $0 $Service 8
    StrCpy $1 $Service 7
    ${If} $0 == "https://"
        StrLen $2 $Service
        IntOp $2 $2 - 8
    ${ElseIf} $1 == "http://"
        StrLen $2 $Service
        IntOp $2 $2 - 7
    ${Else}
        StrCpy $2 0
    ${EndIf}
    ${If} $2 <= 0
        Push 0
        Return
    ${EndIf}
    StrCpy $3 0
    ${Do}
        StrCpy $0 $Service 1 $3
        ${If} $0 == ""
            ${ExitDo}
        ${EndIf}
        ${If} $0 == " "
        ${OrIf} $0 == '"'
            Push 0
            Return
        ${EndIf}
        IntOp $3 $3 + 1
    ${Loop}
    Push 1
FunctionEnd

; Takes $Service from the parameters in $R0. ${GetOptions} would end an address at its first slash.
Function serviceArgument
    StrCpy $Service ""
    StrCpy $1 0
    ${Do}
        StrCpy $0 $R0 9 $1
        ${If} $0 == ""
            Return
        ${EndIf}
        ${If} $0 == "/SERVICE="
            ${ExitDo}
        ${EndIf}
        IntOp $1 $1 + 1
    ${Loop}
    IntOp $1 $1 + 9
    ${Do}
        StrCpy $0 $R0 1 $1
        ${If} $0 == ""
        ${OrIf} $0 == " "
            ${ExitDo}
        ${EndIf}
        ${If} $0 != '"'
            StrCpy $Service "$Service$0"
        ${EndIf}
        IntOp $1 $1 + 1
    ${Loop}
FunctionEnd

Function .onInit
    ${GetParameters} $R0
    StrCpy $Everybody 0
    StrCpy $DesktopIcon 0
    ClearErrors
    ${GetOptions} $R0 "/AllUsers" $R1
    ${IfNot} ${Errors}
        StrCpy $Everybody 1
    ${EndIf}
    ClearErrors
    ${GetOptions} $R0 "/Desktop" $R1
    ${IfNot} ${Errors}
        StrCpy $DesktopIcon 1
    ${EndIf}
    Call serviceArgument
    !insertmacro useContext
    ; A folder named with /D= stands in $INSTDIR already.
    ${If} $INSTDIR == ""
        Call defaultFolder
        StrCpy $INSTDIR $1
    ${EndIf}
    ${If} $Service == ""
        ReadINIStr $Service "$INSTDIR\${SETTINGS}" "service" "url"
    ${EndIf}
    ${If} ${Silent}
        ${If} $Service != ""
            Call checkAddress
            Pop $0
            ${If} $0 == 0
                SetErrorLevel 2
                Abort
            ${EndIf}
        ${EndIf}
        ${If} $Everybody == 1
            !insertmacro needAdministrator refused
        ${EndIf}
    ${EndIf}
    Return
refused:
    SetErrorLevel 2
    Abort
FunctionEnd

Function optionsPage
    !insertmacro MUI_HEADER_TEXT "$(optionsTitle)" "$(optionsText)"
    nsDialogs::Create 1018
    Pop $0
    ${NSD_CreateRadioButton} 0 0 100% 12u "$(onlyMeText)"
    Pop $OnlyMe
    ${NSD_CreateRadioButton} 0 15u 100% 12u "$(everyoneText)"
    Pop $Everyone
    ${NSD_CreateLabel} 0 40u 100% 12u "$(addressText)"
    Pop $0
    ${NSD_CreateText} 0 53u 100% 13u "$Service"
    Pop $AddressField
    ${NSD_CreateCheckBox} 0 80u 100% 12u "$(iconText)"
    Pop $IconBox
    ${If} $Everybody == 1
        ${NSD_Check} $Everyone
    ${Else}
        ${NSD_Check} $OnlyMe
    ${EndIf}
    ${If} $DesktopIcon == 1
        ${NSD_Check} $IconBox
    ${EndIf}
    nsDialogs::Show
FunctionEnd

Function leaveOptionsPage
    ${NSD_GetText} $AddressField $Service
    ${If} $Service != ""
        Call checkAddress
        Pop $0
        ${If} $0 == 0
            MessageBox MB_OK|MB_ICONEXCLAMATION "$(addressWrong)"
            ${NSD_SetFocus} $AddressField
            Abort
        ${EndIf}
    ${EndIf}
    ${NSD_GetState} $IconBox $DesktopIcon
    ${NSD_GetState} $Everyone $R2
    ${If} $R2 == ${BST_CHECKED}
        !insertmacro needAdministrator ask
    ${EndIf}
    ${If} $R2 != $Everybody
        StrCpy $Everybody $R2
        !insertmacro useContext
        Call defaultFolder
        StrCpy $INSTDIR $1
    ${EndIf}
    Return
ask:
    StrCpy $R3 "/AllUsers"
    ${If} $Service != ""
        StrCpy $R3 '$R3 /SERVICE=$Service'
    ${EndIf}
    ${If} $DesktopIcon == 1
        StrCpy $R3 "$R3 /Desktop"
    ${EndIf}
    !insertmacro restartAsAdministrator "$EXEPATH" "$R3"
    Abort
FunctionEnd

Section
    !insertmacro waitUntilClosed
    SetOverwrite on
    !include "${LISTS}/install.nsh"
    SetOutPath "$INSTDIR"
    ${If} $Service != ""
        ClearErrors
        WriteINIStr "$INSTDIR\${SETTINGS}" "service" "url" "$Service"
        ${If} ${Errors}
            MessageBox MB_OK|MB_ICONEXCLAMATION "$(notWritten)" /SD IDOK
            SetErrorLevel 2
            Abort
        ${EndIf}
    ${EndIf}
    WriteUninstaller "$INSTDIR\${UNINSTALLER}"
    CreateShortCut "$SMPROGRAMS\${NAME}.lnk" "$INSTDIR\${PROGRAM}"
    ${If} $DesktopIcon == 1
        CreateShortCut "$DESKTOP\${NAME}.lnk" "$INSTDIR\${PROGRAM}"
    ${EndIf}
    WriteRegStr SHCTX "${UNINSTALL_KEY}" "DisplayName" "${NAME}"
    WriteRegStr SHCTX "${UNINSTALL_KEY}" "DisplayVersion" "${VERSION}"
    WriteRegStr SHCTX "${UNINSTALL_KEY}" "DisplayIcon" "$INSTDIR\${PROGRAM}"
    WriteRegStr SHCTX "${UNINSTALL_KEY}" "Publisher" "Tessavo"
    WriteRegStr SHCTX "${UNINSTALL_KEY}" "InstallLocation" "$INSTDIR"
    WriteRegStr SHCTX "${UNINSTALL_KEY}" "UninstallString" '"$INSTDIR\${UNINSTALLER}"'
    WriteRegStr SHCTX "${UNINSTALL_KEY}" "QuietUninstallString" '"$INSTDIR\${UNINSTALLER}" /S'
    WriteRegDWORD SHCTX "${UNINSTALL_KEY}" "NoModify" 1
    WriteRegDWORD SHCTX "${UNINSTALL_KEY}" "NoRepair" 1
    ${GetSize} "$INSTDIR" "/S=0K" $0 $1 $2
    IntFmt $0 "0x%08X" $0
    WriteRegDWORD SHCTX "${UNINSTALL_KEY}" "EstimatedSize" "$0"
SectionEnd

Function un.onInit
    SetRegView 64
    StrCpy $Everybody 0
    StrCpy $Purge 0
    ${GetParameters} $R0
    ClearErrors
    ${GetOptions} $R0 "/Purge" $R1
    ${IfNot} ${Errors}
        StrCpy $Purge 1
    ${EndIf}
    ReadRegStr $0 HKLM "${UNINSTALL_KEY}" "InstallLocation"
    ${If} $0 == $INSTDIR
        StrCpy $Everybody 1
        !insertmacro needAdministrator ask
    ${EndIf}
    !insertmacro useContext
    Return
ask:
    ${If} ${Silent}
        SetErrorLevel 2
        Abort
    ${EndIf}
    !insertmacro restartAsAdministrator "$INSTDIR\${UNINSTALLER}" ""
    SetErrorLevel 2
    Abort
FunctionEnd

Function un.purgePage
    !insertmacro MUI_HEADER_TEXT "$(purgeTitle)" ""
    nsDialogs::Create 1018
    Pop $0
    ${NSD_CreateLabel} 0 0 100% 50u "$(purgeIntro)"
    Pop $0
    ${NSD_CreateCheckBox} 0 60u 100% 12u "$(purgeText)"
    Pop $PurgeBox
    ${If} $Purge == 1
        ${NSD_Check} $PurgeBox
    ${EndIf}
    nsDialogs::Show
FunctionEnd

Function un.leavePurgePage
    ${NSD_GetState} $PurgeBox $Purge
FunctionEnd

Section "Uninstall"
    !insertmacro waitUntilClosed
    !include "${LISTS}/remove.nsh"
    Delete "$SMPROGRAMS\${NAME}.lnk"
    Delete "$DESKTOP\${NAME}.lnk"
    DeleteRegKey SHCTX "${UNINSTALL_KEY}"
    ${If} $Purge == 1
        Delete "$INSTDIR\${SETTINGS}"
        SetShellVarContext current
        Delete "$LOCALAPPDATA\${USER_SETTINGS}\login_config.txt"
        Delete "$LOCALAPPDATA\${USER_SETTINGS}\choices.ini"
        Delete "$LOCALAPPDATA\${USER_SETTINGS}\order_list_*"
        Delete "$LOCALAPPDATA\${USER_SETTINGS}\ledger.db*"
        Delete "$LOCALAPPDATA\${USER_SETTINGS}\ledger-damaged-*.db*"
        Delete "$LOCALAPPDATA\${USER_SETTINGS}\session-*.lock"
        Delete "$LOCALAPPDATA\${USER_SETTINGS}\log\tessavo-tools*.lo*"
        RMDir "$LOCALAPPDATA\${USER_SETTINGS}\log"
        RMDir "$LOCALAPPDATA\${USER_SETTINGS}"
        Delete "$PROFILE\${USER_SETTINGS}\loginData"
        RMDir "$PROFILE\${USER_SETTINGS}"
    ${EndIf}
    Delete "$INSTDIR\${UNINSTALLER}"
    ; Only when nothing of somebody else's is left in it.
    RMDir "$INSTDIR"
SectionEnd
