# shellcheck shell=bash disable=SC2154,SC2034
# Server installations of the sample: fresh, an upgrade over it, demo.
# shellcheck source=tests/e2e/sample.sh
source "$Root/tests/e2e/sample.sh"

# Counts: every table with its number of rows, over the wire.
Counts() {
  local database table
  for database in SalesDesk_Sales SalesDesk_Stock; do
    for table in $(Query "$database" 'SELECT name FROM sys.tables ORDER BY name'); do
      echo "$database.$table $(Query "$database" "SELECT COUNT(*) FROM [$table]")"
    done
  done
}

# Reference NUMBER TYPE: the counts when another client has run these scripts of the sample, on a server
# of its own.
Reference() {
  local folder=$Machine/reference-$1
  StartServer "$folder" "$folder/drive_c"
  LoadScripts "$Sample" "$2" "$folder/drive_c"
  Counts
  StopServer
}

Fresh=$(Reference 1 Fresh)
Upgraded=$(Reference 1 Upgrade)
StartServer "$Machine/server" "$Machine/wine/drive_c"

Test 'a wrong password and a wrong server are refused, the right ones go on to the end'
PutPack "$Sample"
Play 'wait FrmType; click OptFresh; click CmdNext; wait FrmMode; click CmdNext
  wait FrmAuthentication; expect ShpProgBar width 220; expect CmdNext enabled false
  type TxtUsrName sa; type TxtPsWord wrong; type TxtServer ${SERVER}; click CmdNext
  expect LblMsg text Authentication failed...; expect CmdNext enabled false
  type TxtPsWord ${env:SQL_PASSWORD}; type TxtServer 127.0.0.1,1; expect CmdNext enabled true
  click CmdNext; expect CmdNext enabled false; type TxtServer ${SERVER}; click CmdNext
  wait FrmLocation; expect LblTitleMsg text "Select Location "; expect TxtServer visible false
  click CmdLocation; browse C:\Program Files; click CmdNext; @finish'

Test 'the databases are there, with their rows, in the installation'\''s own folder'
Is 'rows' "$Fresh" "$(Counts)"
printf 'SalesDesk_%s\n' Sales.mdf Sales_log.ldf Stock.mdf Stock_log.ldf >"$Machine/files"
# The server has files of its own beside a database until it has closed the one that the last client left.
HasFiles() { ls "$Host/Data" | diff "$Machine/files" -; }
Soon 'files' HasFiles
Is 'settings' "Server=$Server|UserName=sa|Password=$SQL_PASSWORD|" "$(Settings)"
Login="UsrName:sa"$'\n'"PsWord:$SQL_PASSWORD"
Records="$(RecordBegin)
$Login
DBNames:2, SalesDesk_Sales, SalesDesk_Stock
DBLogins:1, SalesDeskUser
$(DeployedRecords)"
RecordIs <<<"$Records"
Built='Building Database Started....
Database creation completed successfully...'
LogIs < <(LogBegin && echo "$Built" && Deployed Data)

Test 'an upgrade over the old location: the folder and the databases are backed up first'
cp -a "$Host" "$Machine/before"
rm "$Machine/before/Ta-luErrLog.txt" "$Machine/before/Data/"*
Play "wait FrmType; click OptUpgrade; click ChkOldLocation; click CmdLocation; browse $App
  @location Server; expect TxtInstaPath text $App; click CmdNext; @finish"
Copy=$(cd "$Backup" && ls -d AppFolder*)
True "the names $(ls "$Backup")" Dated "$Backup"/*
True 'the copy' diff -r "$Machine/before" "$Backup/$Copy"
for Name in SalesDesk_Sales SalesDesk_Stock; do
  File=$(cd "$Backup" && ls "Talu_$Name"*.bkp)
  while read -r Table Rows; do
    Is "rows in $File" "$Rows" "$(sqlite3 "$Backup/$File" "SELECT COUNT(*) FROM [${Table#*.}]")"
  done < <(grep "^$Name" <<<"$Fresh")
  True "the statement of $Name" grep -xF "IF  EXISTS (SELECT name FROM sys.databases WHERE name = \
N'$Name') BACKUP DATABASE $Name TO  DISK = N'C:\\Program Files\\TA-LU\\SalesDesk BackUp\\$File ' WITH \
NOFORMAT, INIT,  NAME = N'$Name-Full Database Backup', SKIP, NOREWIND, NOUNLOAD,  STATS = 10" \
    <<<"$(Statements)"
done
Is 'rows' "$Upgraded" "$(Counts)"
RecordIs < <(echo "$Records" && RecordBegin && printf '%s\n' "$Login" DBNames:0 DBLogins:0 && DeployedRecords)
LogIs < <(Copied "$Machine/before" "$App" "C:\\Program Files\\TA-LU\\SalesDesk BackUp\\$Copy" - &&
  LogBegin && echo "$Built" && Deployed '.*')
StopServer

Test 'a demo installation has the demo'\''s rows'
Demo=$(Reference 2 Demo)
InstallBelow Demo SalesDesk
StartServer "$Machine/server-2" "$Machine/wine/drive_c"
sed -i '/^AddOns\r$/,/^}\r$/d' "$PackDir/AppCfg.txt"
Play '@install Server Demo; @finish'
Is 'rows' "$Demo" "$(Counts)"
True 'the file' test -f "$Host/Data/SalesDesk_Sales.mdf"
