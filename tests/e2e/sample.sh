# shellcheck shell=bash disable=SC2154,SC2034
# Sourced by the groups that install the whole sample: what its last page leaves.
InstallBelow 'Program Files' SalesDesk
Backup=$(dirname "$Host")/'SalesDesk BackUp'
Public='C:\users\Public\Desktop' Start='C:\ProgramData\Microsoft\Windows\Start Menu'

# Deployed THERE: the log's entries; the sub-folders that match are there already.
Deployed() {
  cat <<END
DSN creation started...
creating - SQL Server, SalesDeskStock, SalesDesk_Stock, SalesDeskUser, Desk-2012-Stock
creating - SQL Server,SalesDesk,SalesDesk_Sales,SalesDeskUser,Desk-2012-Stock
error: Operation is not allowed when the object is open.
DSN(s) created successfully
Started Copying files...
$(Copied "$Sample/Application" 'D:\Pack\Application' "$App" "$1")
File copying finished Successfully....
File Registration started...
regsvr32 /s "$App\\Components\\SALESGRID.OCX" /U
regsvr32 /s "$App\\Components\\SALESGRID.OCX"
regsvr32 /s "$App\\Components\\SalesPrint.dll" /U
regsvr32 /s "$App\\Components\\SalesPrint.dll"
All Files registered successfully
Special Registration started...
regsvr32 /s "C:\\windows\\system\\SalesLink.ocx" /U
regsvr32 /s "C:\\windows\\system\\SalesLink.ocx"
Special Registration finished.
Creating Shotcuts...
Shotcut:$Public\\SalesDesk.lnk created
Shotcut:$Start\\TALU\\SalesDesk\\SalesDesk.lnk created
Shotcut:$Start\\Programs\\TALU\\SalesDesk\\SalesDesk Sales and Stock.lnk created
Writing Settings started...
Writing Settings not Finished
Execution of AddOn packs started...
Execution of LabelPrinter.exe AddOn pack started
Process Finished, Exit Code 7
Execution of SalesDeskTools.msi AddOn pack started
msiexec /a "D:\\Pack\\AddOns\\SalesDeskTools.msi" /quiet
Process Finished, Exit Code 0
Execution of CardReader.exe AddOn pack started
Process Finished, Exit Code -1
Final Message started...
Final Message write successfully
Installation finished.
END
}

# DeployedRecords: its records.
DeployedRecords() {
  cat <<END
SystemDSN:SQL Server, SalesDeskStock, SalesDesk_Stock, SalesDeskUser, Desk-2012-Stock
SystemDSN:SQL Server,SalesDesk,SalesDesk_Sales,SalesDeskUser,Desk-2012-Stock
Shotcut:$Public\\SalesDesk.lnk
ShotcutFolder:$Start\\TALU\\SalesDesk
Shotcut:$Start\\TALU\\SalesDesk\\SalesDesk.lnk
ShotcutFolder:$Start\\Programs\\TALU\\SalesDesk
Shotcut:$Start\\Programs\\TALU\\SalesDesk\\SalesDesk Sales and Stock.lnk
AddOns:LabelPrinter.exe
AddOns:SalesDeskTools.msi
AddOns:CardReader.exe
END
}

# Settings: the three files that it writes, joined.
Settings() { cat "$Host"/Settings/{Server,User,Password}.txt | tr -d '\r' | tr '\n' '|'; }

# Dated NAME...: each name ends in the stamp of this minute or the last.
Dated() {
  local name stamps
  stamps=" $(date -d '1 minute ago' +%-d_%-m_%Y_%-H_%-M) $(date +%-d_%-m_%Y_%-H_%-M) "
  for name in "$@"; do
    [[ $name =~ ([0-9]+(_[0-9]+){4})(\.bkp)?$ && $stamps == *" ${BASH_REMATCH[1]} "* ]] || return 1
  done
}
