# shellcheck shell=bash disable=SC2154,SC2034
# A client installation of the sample, what it leaves, and a second one over it.
# shellcheck source=tests/e2e/sample.sh
source "$Root/tests/e2e/sample.sh"
StartServer "$Machine/server" "$Machine/server/drive_c"
LoadScripts "$Sample" Fresh "$Machine/server/drive_c"

Test 'log and record hold what was done, in order'
PutPack "$Sample"
Play '@install Client Fresh; wait FrmApplication; expect ShpProgBar width 7325; expect LblNotRes text ""
  expect LblFinalMsg begins "\rSalesDesk is on this machine now.\rStart it from the desktop"; @finish'
Records="$(RecordBegin && DeployedRecords)"
RecordIs <<<"$Records"
LogIs < <(LogBegin && Deployed Data)

Test 'the installed tree is the pack'\''s, without database files, with the settings'
Is 'differences' "Only in Application/Data: SalesDesk.ldf
Only in Application/Data: SalesDesk.mdf
Only in $Host/Settings: Password.txt
Only in $Host/Settings: Server.txt
Only in $Host/Settings: User.txt
Only in $Host: Ta-luErrLog.txt
Only in $Host: Uninstall.dat" "$(cd "$Sample" && diff -rq Application "$Host" || true)"
Is 'settings' "Server=$Server|UserName=|Password=|" "$(Settings)"

Test 'data sources connect, components are registered, the add-on is there, shortcuts start the product'
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
cp -a "$Host" "$Machine/before"
rm "$Machine/before/Ta-luErrLog.txt"
Play '@install Client Fresh; @finish'
Copy=$(ls "$Backup")
True "the name $Copy" Dated "$Copy"
True 'the copy' diff -r "$Machine/before" "$Backup/$Copy"
RecordIs <<<"$Records"$'\n'"$Records"
LogIs < <(Copied "$Machine/before" "$App" "C:\\Program Files\\TA-LU\\SalesDesk BackUp\\$Copy" - &&
  LogBegin && Deployed '.*')
