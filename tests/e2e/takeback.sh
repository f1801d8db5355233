# shellcheck shell=bash disable=SC2154,SC2034
# The sample installed and taken back: files, registry, data sources and server are what they were, but for what
# Uninstall.exe says that it leaves.
PutPack "$Sample"
DriveC=$Machine/wine/drive_c

# Snapshot FILE: everything on the machine and on the server, one line a thing.
Snapshot() {
  # Wine writes the registry when the last program has ended.
  timeout 120 wineserver -w || true
  {
    (cd "$DriveC" && find . -mindepth 1 \( -type f -exec sha256sum {} + \) -o -printf '%y  %p\n')
    # The empty keys that Windows Installer and the data sources' library make for their lists are theirs.
    python3 -B "$Texts" registry "$Machine"/wine/{system,user}.reg |
      grep -vE '^(system|user) \[.*(\\Installer\\.*|\\ODBC Data Sources)]$'
    sed 's/^/odbc.ini: /' "$Machine/odbc/odbc.ini" 2>/dev/null || true
    Query master 'SELECT name FROM sys.databases'
    Query master 'SELECT name FROM sys.server_principals'
  } | LC_ALL=C sort >"$1"
}

# AsBefore WHAT STAYS: since the snapshot "before" nothing is gone, and nothing is new but these lines. The program
# itself is gone with the next start of Windows.
AsBefore() {
  Is "$1: programs to be removed at the next start" 1 "$(find "$DriveC/windows/temp" -name 'TALU-*.tmp' | wc -l)"
  wine wineboot >/dev/null 2>&1
  Snapshot "$Machine/after"
  True 'the server has answered' grep -qxF master "$Machine/before"
  Is "$1" "$2" "$(LC_ALL=C comm -3 "$Machine/before" "$Machine/after")"
}

# What Windows Installer keeps for itself when it has run for the first time.
Keeps=$'\td  ./windows/Installer'

Test 'a client, taken back by command: no window, all as before'
InstallBelow 'Program Files' SalesDesk
StartServer "$Machine/server" "$Machine/server/drive_c"
LoadScripts "$Sample" Fresh "$Machine/server/drive_c"
wine wineboot >/dev/null 2>&1
Snapshot "$Machine/before"
Play '@install Client Fresh; @finish'
True 'the installation' test -f "$Host/Uninstall.exe"
Program="$App\\Uninstall.exe" Play 'wait FrmTakeBack; close FrmTakeBack; ended 1'
True 'the plan' wine "$Host/Uninstall.exe" plan --pack 'D:\Pack'
Is 'what stays' $'stays  add-on           CardReader.exe\nstays  add-on           LabelPrinter.exe' \
  "$(grep -v '^goes' "$Machine/out" | tr -d '\r' | sed 's/ - .*//' | grep '^stays')"
True 'taking it back' env -u DISPLAY wine "$Host/Uninstall.exe" run --pack 'D:\Pack'
AsBefore 'the machine' "$Keeps"
StopServer

Test 'a server, fresh and upgraded, taken back by the page with its databases: backups are what stays'
StartServer "$Machine/server-2" "$DriveC"
wine wineboot >/dev/null 2>&1
Snapshot "$Machine/before"
Play '@install Server Fresh; @finish'
Play '@install Server Upgrade; @finish'
Program="$App\\Uninstall.exe" Play 'wait FrmTakeBack; expect TxtPack text D:\Pack; expect TxtServer visible false
  click ChkDatabases; expect TxtServer text ${SERVER}; expect TxtUsrName text sa
  type TxtPsWord ${env:SQL_PASSWORD}; click CmdNext; timeout 300; expect CmdNext begins &Finish
  expect LblMsg begins All that was installed is removed.; expect ShpProgBar width 7325; click CmdNext; ended 0'
Backups="$DriveC/Program Files/TA-LU/SalesDesk BackUp"
Is 'backups' '4' "$(find "$Backups" -name '*.bkp' | wc -l)"
rm -rf "$Backups"
rmdir "$DriveC/Program Files/TA-LU"
AsBefore 'the machine' ''
StopServer
