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
Play "@location Client; click CmdLocation; browse cancel; click CmdLocation; browse E:\\; expect TxtInstaPath text E:\\TA-LU\\Small
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

Test 'wrong lines in every block: each is logged, the rest is done'
InstallBelow Odd
Pack "SystemDSN=No Such Driver,Odd|SQL Server|SQL Server, Odd ,master,sa,$SQL_PASSWORD" \
  'Shotcut=\One.txt|\One.txt,Nowhere,One|\One.txt, startmenu ,One' \
  'RegnLocation=\Nowhere|\Sub' 'SpecialRegn=Missing.ocx,and more' \
  'AddOns=Setup.EXE|No program.exe|With blanks.exe|Neither' \
  'WriteSettings=\Other.TXT,a,SERVER|\Conn.txt,Server = , server |\Nowhere\a.txt,a,SERVER|\Late.txt,a,b' \
  'FinalMsg= one|  |two'
mkdir "$PackDir/AddOns"
echo 'no program' | tee "$PackDir/Application/Sub/Bad.ocx.dll" >"$PackDir/AddOns/No program.exe"
cp "$Sample/AddOns/LabelPrinter.exe" "$PackDir/AddOns/With blanks.exe"
Steps='@install Client; wait FrmApplication; expect LblFinalMsg text "\r one"; @finish' \
  Foretold "$PackDir" Client Fresh --special-folders "$(SpecialFolders)" \
  --exit 'No program.exe=-1' --exit 'With blanks.exe=7'
