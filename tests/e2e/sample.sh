# shellcheck shell=bash disable=SC2154,SC2034
# What the group plan cannot tell of the sample: that the installed product works, and what an installation over
# another one keeps.
Public='C:\users\Public\Desktop' Start='C:\ProgramData\Microsoft\Windows\Start Menu'
InstallBelow Shop SalesDesk
StartServer "$Machine/server" "$Machine/server/drive_c"
LoadScripts "$Sample" Fresh "$Machine/server/drive_c"
PutPack "$Sample"

# CopyIs FOLDER: the dated copy beside the application folder has all that this one has; each name beside it ends
# in the stamp of a minute since the case has begun.
CopyIs() {
  local name at stamps=' '
  for ((at = CaseBegin / 1000000000; at < EPOCHSECONDS + 60; at += 60)); do
    stamps+="$(date -d "@$at" +%-d_%-m_%Y_%-H_%-M) "
  done
  for name in "$Host BackUp"/*; do
    [[ $name =~ ([0-9]+(_[0-9]+){4})(\.bkp)?$ && $stamps == *" ${BASH_REMATCH[1]} "* ]] || Problems+=("$name")
  done
  True 'the copy' diff -r "$1" "$(echo "$Host BackUp"/AppFolder*)"
}

Test 'data sources connect, components are registered, the add-on is there, shortcuts start the product'
Play '@install Client Fresh; wait FrmApplication; expect ShpProgBar width 7325; expect LblNotRes text ""
  expect LblFinalMsg begins "\rSalesDesk is on this machine now.\rStart it from the desktop"; @finish'
for Name in SalesDesk SalesDeskStock; do
  True "isql through $Name" isql -b "$Name" SalesDeskUser Desk-2012-Stock <<<'SELECT 1'
done
for Id in 1 2 3; do
  Soon "component $Id" wine reg query "HKCR\\CLSID\\{5C0E7A10-91B4-4E0C-8F6B-3D2A64B1C70$Id}\\InprocServer32"
done
True 'the .msi' cmp "$Root/samples/SalesDesk/programs/Tools.txt" \
  "$Machine/wine/drive_c/Program Files/SalesDesk Tools/Tools.txt"
for Link in "$Public\\SalesDesk.lnk" "$Start\\TALU\\SalesDesk\\SalesDesk.lnk" \
  "$Start\\Programs\\TALU\\SalesDesk\\SalesDesk Sales and Stock.lnk"; do
  wine start "$Link" --check
  Soon "the program behind $Link" grep -q "SalesDesk started; Server=$Server;" "$Host/Check.txt"
  rm -f "$Host/Check.txt"
done

Test 'a second installation over it: a dated copy, a new log, a longer record'
cp -a "$Host" "$Machine/old"
rm "$Machine/old/Ta-luErrLog.txt"
Foretold "$Sample" Client Fresh --special-folders "$(SpecialFolders)" --exit LabelPrinter.exe=7 \
  --database SalesDesk_Sales --database SalesDesk_Stock --login SalesDeskUser
CopyIs "$Machine/old"
StopServer

Test 'a wrong password and a wrong server are refused, the right ones go on to the end'
InstallBelow 'Head office' SalesDesk
StartServer "$Machine/server-2" "$Machine/wine/drive_c"
Play 'wait FrmType; click OptFresh; click CmdNext; wait FrmMode; click CmdNext
  wait FrmAuthentication; expect ShpProgBar width 220; expect CmdNext enabled false
  type TxtUsrName sa; type TxtPsWord wrong; type TxtServer ${SERVER}; click CmdNext
  expect LblMsg text Authentication failed...; expect CmdNext enabled false
  type TxtPsWord ${env:SQL_PASSWORD}; type TxtServer 127.0.0.1,1; expect CmdNext enabled true
  click CmdNext; expect CmdNext enabled false; type TxtServer ${SERVER}; click CmdNext
  wait FrmLocation; expect LblTitleMsg text "Select Location "; expect TxtServer visible false
  click CmdLocation; browse ${FOLDER}; click CmdNext; @finish'
printf 'SalesDesk_%s\n' Sales.mdf Sales_log.ldf Stock.mdf Stock_log.ldf >"$Machine/files"
# The server has files of its own beside a database until it has closed the one that the last client left.
HasFiles() { ls "$Host/Data" | diff "$Machine/files" -; }
Soon 'files' HasFiles

Test 'an upgrade over the old location: the folder and the databases are backed up first'
Fresh=$(Counts)
rm -r "$Machine/old"
cp -a "$Host" "$Machine/old"
rm "$Machine/old/Ta-luErrLog.txt" "$Machine/old/Data/"*
Play "wait FrmType; click OptUpgrade; click ChkOldLocation; click CmdLocation; browse $App
  @location Server; expect TxtInstaPath text $App; click CmdNext; @finish"
CopyIs "$Machine/old"
while read -r Table Rows; do
  File=$(echo "$Host BackUp/Talu_${Table%.*}"*.bkp)
  Is "rows of $Table in $File" "$Rows" "$(sqlite3 "$File" "SELECT COUNT(*) FROM [${Table#*.}]")"
done <<<"$Fresh"
Is 'installations in the log' 1 "$(grep -ac '^Installation Started' "$Host/Ta-luErrLog.txt")"
True 'the record' cmp -n "$(wc -c <"$Machine/old/Uninstall.dat")" "$Machine/old/Uninstall.dat" "$Host/Uninstall.dat"
Is 'installations in the record' 2 "$(grep -ac '^AppFolder:' "$Host/Uninstall.dat")"
