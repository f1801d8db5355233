# shellcheck shell=bash disable=SC2154,SC2034
# The pages by mouse and keyboard, and what an operator and the author of a pack can do to them.
# A drive on which nobody can make a folder.
ln -sfn /sys "$Machine/wine/dosdevices/e:"
StartServer "$Machine/server" "$Machine/server/drive_c"
InstallBelow Apps

# Hold FILE: a program keeps this file of the application folder open for itself, until Release.
Hold() {
  mkfifo "$Machine/hold"
  exec 7<>"$Machine/hold"
  rm "$Machine/hold"
  (cd "$Host" && exec wine cmd /c "more >> $1") <&7 >/dev/null 2>&1 &
  Holder=$!
  Soon "the hold on $1" Held "$1"
}
Held() { [[ -n $(find /proc/[0-9]*/fd -lname "$(realpath "$Host/$1")" 2>/dev/null) ]]; }
Release() {
  exec 7>&-
  kill "$Holder" 2>/dev/null || true
}

Test 'back and forth in both modes; a page closed by its frame'
Pack FreshDBSript=Build.sql
Play 'wait FrmType; expect OptFresh value true; expect OptDemo enabled false; click CmdNext
  wait FrmMode; expect OptServer value true; click CmdPrev
  wait FrmType; click CmdNext; wait FrmMode; click CmdNext
  wait FrmAuthentication; click CmdPrev; wait FrmMode; click OptClient; click CmdNext
  wait FrmLocation; expect ShpProgBar width 440; expect LblTitleMsg text Select Location and Server
  expect TxtServer visible true; expect CmdNext enabled false
  expect CmdLocation text Installation Location ...; click CmdPrev
  wait FrmMode; expect OptClient value true; click OptServer; click CmdNext
  wait FrmAuthentication; type TxtUsrName sa; type TxtPsWord ${env:SQL_PASSWORD}
  type TxtServer ${SERVER}; click CmdNext; wait FrmLocation; click CmdPrev
  wait FrmAuthentication; expect TxtUsrName text sa; expect TxtServer text ${SERVER}; click CmdNext
  wait FrmLocation; close FrmLocation; ended 0'
True 'nothing is left' test ! -e "$Host"

Test 'by keyboard alone, to the end'
Pack
Play 'wait FrmType; key ALT+N; wait FrmMode; key DOWN; expect OptClient value true; key ENTER
  wait FrmLocation; expect TxtInstaPath focus true; key TAB SPACE; browse C:\Apps
  key TAB; expect TxtServer focus true; key S R V; expect CmdNext enabled true; key ALT+B
  wait FrmMode; key ENTER; wait FrmLocation; key ALT+N
  wait FrmApplication; expect CmdNext enabled true; key ENTER; ended 0'
Play 'wait FrmType; key ENTER; wait FrmMode; key ALT+F4; ended 0'

Test 'without AppCfg.txt the error box, and a clean end'
Pack
rm "$PackDir/AppCfg.txt"
Play "message Run-time error '53':\r\n\r\nFile not found; ended 0"

Test 'a location in use is refused, another one is taken'
Pack
InUse='Location in use,Please select Another Location...'
InstallBelow InUse
mkdir -p "$Host"
echo >"$Host/Uninstall.dat"
Hold Uninstall.dat
Play "@install Client; message $InUse; expect LblMsg text $InUse; expect CmdNext enabled false
  type TxtInstaPath C:\\InUse\\TA-LU\\Other; click CmdNext; @finish"
Release
True 'installed elsewhere' test -f "$(dirname "$Host")/Other/One.txt"

Test 'a location that cannot be written is refused'
Play "@location Client; click CmdLocation; browse E:\\; expect TxtInstaPath text E:\\TA-LU\\Small
  type TxtServer SRV; click CmdNext; message $InUse; close FrmLocation; ended 0"

Test 'a file in use is left, the rest is copied; 8-bit names, a path of more than 200 characters'
InstallBelow "$(printf 'Größe %.0s' {1..30})X" 'Müller & Söhne'
Pack 'AppFolder=Müller & Söhne'
mkdir -p "$PackDir/Application/Straße" "$Host"
for Name in a.b Übung.TXT Straße/Ölfarbe.txt One.mdf Two.LDF; do echo new >"$PackDir/Application/$Name"; done
echo old >"$Host/One.txt"
Hold One.txt
Steps='@install Client; @finish' Except=One.txt Foretold "$PackDir" Client Fresh
Release
Is 'the tree' "Files Application/One.txt and $Host/One.txt differ
Only in $Host: Data
Only in $Host: Ta-luErrLog.txt
Only in $Host: Uninstall.dat
Only in Application: One.mdf" "$(cd "$PackDir" && diff -rq Application "$Host" | sort || true)"

Test 'an empty block for every key'
InstallBelow Empty
Pack FreshDBSript= DemoDBSript= UpgradeDBSript= DBSript= SystemDSN= Shotcut= RegnLocation= SpecialRegn= \
  AddOns= WriteSettings= FinalMsg= DBFolder= AppTitle=
Steps='wait FrmType; expect OptFresh enabled false; expect OptDemo enabled false
  expect OptUpgrade enabled false; @install Client
  wait FrmApplication; expect LblFinalMsg text ""; @finish' Foretold "$PackDir" Client Fresh

Test 'no name for the application folder: a message, and no installation'
Pack AppFolder=
Play '@install Client; message Bad file name or number; expect CmdNext enabled false
  close FrmLocation; ended 0'

Test 'wrong lines in every block: each is logged, the rest is done'
InstallBelow Odd
Source="SQL Server, Odd ,master,sa,$SQL_PASSWORD"
Pack "SystemDSN=No Such Driver,Odd|SQL Server|$Source" \
  'Shotcut=\One.txt|\One.txt,Nowhere,One|\One.txt,Desktop,No\Folder|\One.txt, startmenu ,One' \
  'RegnLocation=\Nowhere|\Sub' 'SpecialRegn=Missing.ocx,and more' \
  'AddOns=Setup.EXE|No program.exe|Missing.msi|With blanks.exe|Neither' \
  'WriteSettings=\Other.TXT,a,SERVER|\Conn.txt,Server = , server |\Nowhere\a.txt,a,SERVER|\Late.txt,a,b' \
  'FinalMsg= one|  |two'
mkdir "$PackDir/AddOns"
echo 'no program' | tee "$PackDir/Application/Sub/Bad.ocx.dll" >"$PackDir/AddOns/No program.exe"
cp "$Sample/AddOns/LabelPrinter.exe" "$PackDir/AddOns/With blanks.exe"
# A file where the common start menu's folder would be.
echo >"$Machine/wine/drive_c/ProgramData/Microsoft/Windows/Start Menu/TALU"
Twice="$App\\Sub\\Bad.ocx.dll"
Menu='Microsoft\Windows\Start Menu\TALU\Small' User="C:\\users\\$(id -un)"
Play '@install Client; wait FrmApplication; expect LblFinalMsg text "\r one"; @finish'
LogIs <<END
$(LogBegin)
DSN creation started...
creating - $Source
creating - SQL Server
error: Subscript out of range
error: Subscript out of range
creating - No Such Driver,Odd
error: Subscript out of range
DSN(s) created successfully
Started Copying files...
// / Copying file - $App\\D:\\Pack\\Application\\One.txt
// / Creating New Folder - $App\\Sub
// / Copying file - $App\\Sub\\D:\\Pack\\Application\\Sub\\Bad.ocx.dll
// / Copying file - $App\\Sub\\D:\\Pack\\Application\\Sub\\Two.txt
File copying finished Successfully....
File Registration started...
error: Path not found
$(printf 'regsvr32 /s "%s"%s\n' "$Twice" ' /U' "$Twice" '' "$Twice" ' /U' "$Twice" '')
All Files registered successfully
Special Registration started...
regsvr32 /s "C:\\windows\\system\\Missing.ocx" /U
regsvr32 /s "C:\\windows\\system\\Missing.ocx"
Special Registration finished.
Creating Shotcuts...
error: Subscript out of range
error: *
Shotcut:C:\\users\\Public\\Desktop\\No\\Folder.lnk can't created
error: *
Shotcut:$User\\Desktop\\No\\Folder.lnk can't created
error: *
Shotcut:$User\\Desktop\\No\\Folder.lnk can't created
error: File already exists
error: Path not found
error: *
Shotcut:C:\\ProgramData\\$Menu\\One.lnk can't created
Shotcut:$User\\AppData\\Roaming\\$Menu\\One.lnk created
Writing Settings started...
error: Path not found
Execution of AddOn packs started...
Process Finished, Exit Code 0
Execution of No program.exe AddOn pack started
Process Finished, Exit Code -1
Execution of Missing.msi AddOn pack started
msiexec /a "D:\\Pack\\AddOns\\Missing.msi" /quiet
Process Finished, Exit Code *
Execution of With blanks.exe AddOn pack started
Process Finished, Exit Code 7
Process Finished, Exit Code 7
Final Message started...
Final Message write successfully
Installation finished.
END
RecordIs < <(
  RecordBegin
  printf 'SystemDSN:%s\n' "$Source" 'SQL Server' 'No Such Driver,Odd'
  printf '%s\n' "ShotcutFolder:$User\\AppData\\Roaming\\$Menu" "Shotcut:$User\\AppData\\Roaming\\$Menu\\One.lnk"
  printf 'AddOns:%s\n' Setup.EXE 'No program.exe' Missing.msi 'With blanks.exe' Neither
)
Is 'settings' "Server = $Server" "$(tr -d '\r' <"$Host/Conn.txt")"
Is 'files' 'Conn.txt Data One.txt Sub Ta-luErrLog.txt Uninstall.dat' "$(ls "$Host" | xargs)"
