# shellcheck shell=bash disable=SC2154,SC2034
# Builds that fail: what the operator sees, what the server is told, what is left.
StartServer "$Machine/server" "$Machine/wine/drive_c" --fail-text 'Broken=50000:the middle breaks' \
  --cut-text 'Cut here' --delay-text 'BACKUP DATABASE Long=2500' --delay-text 'BACKUP DATABASE Endless=100000'
Remove='DROP DATABASE One DROP DATABASE Two DROP LOGIN Clerk'
# The operator can only close the page after a build that failed.
Closed='expect CmdPrev enabled false; expect CmdNext enabled false; expect ShpProgBar width 440
  close FrmSQLNonQuery; ended 0'
Failed="expect LblMsg text Database creation not finished...; $Closed"

# Create: a script's two databases and a login.
Create() {
  printf '%s\nGO\n' "--taluGO
    CREATE DATABASE [One] ON (NAME = One, FILENAME = 'C:\\Old\\One.mdf')" \
    "CREATE DATABASE Two ON (NAME = Two, FILENAME = 'C:\\Old\\Two.mdf')" \
    "CREATE LOGIN Clerk WITH PASSWORD = N'Clerk-2012'"
}

# Dropped: what the rollback tells the server.
Dropped() {
  printf '%s\n' 'USE Master' 'ALTER DATABASE  [One] SET OFFLINE WITH ROLLBACK IMMEDIATE' \
    'DROP DATABASE  [One]' 'USE Master' 'ALTER DATABASE  Two SET OFFLINE WITH ROLLBACK IMMEDIATE' \
    'DROP DATABASE  Two' 'USE Master' 'DROP LOGIN  Clerk'
}

# Stops STEPS SAYING: plays steps of which one does not come true, and drive says so.
Stops() {
  local before=${#Problems[@]}
  Play "$1"
  if ((${#Problems[@]} == before)); then
    Problems+=("came true: $1")
  elif [[ ${Problems[-1]} == *"$2"* ]]; then
    unset 'Problems[-1]'
  fi
}

# AreThere NAMES: the databases and logins beside the server's own.
AreThere() {
  Is 'databases and logins' "$1" "$({
    Query master "SELECT name FROM sys.databases WHERE name NOT IN ('master', 'model', 'msdb', 'tempdb')"
    Query master "SELECT name FROM sys.sql_logins WHERE name <> 'sa'"
  } | xargs)"
}

Test 'a backup may take as long as it takes, and the page lives on meanwhile'
InstallBelow Slow
Pack FreshDBSript=Build.sql DBSript=Build.sql
Query master 'CREATE DATABASE Long'
Script Build.sql <<<$'--taluLineByLine\nUSE Long'
WINEADO_COMMAND_TIMEOUT=1 Play '@install Server; @finish'
True 'the backup' ls "$Host BackUp"/Talu_Long_*.bkp*
Is 'entries of errors' '' "$(grep -i 'timeout' "$Host/Ta-luErrLog.txt" || true)"
Script Build.sql <<<$'--taluLineByLine\nUSE Endless'
Play '@install Server; wait FrmSQLNonQuery; timeout 20; close FrmSQLNonQuery; ended 0'
Query master 'DROP DATABASE Long'

Test 'a statement fails in the middle: the rest runs, then everything is dropped, in order'
InstallBelow Middle
Pack 'FreshDBSript=Build.sql|Rows.sql'
{ Create && printf '%s\nGO\n' 'USE One' $'CREATE TABLE Broken (\n  Id INT)' 'CREATE TABLE Whole (Id INT)'; } |
  Script Build.sql
# Nobody reads its rows, so the second one's error stays with the driver.
Unread='SELECT Id FROM Whole DROP DATABASE NoSuch'
Script Rows.sql <<<$'--taluLineByLine\nINSERT INTO Whole VALUES (1)\n'"$Unread"
Play "@install Server; message [FreeTDS][SQL Server]the middle breaks; $Failed"
Is 'the statements' "CREATE TABLE Broken ( / Id INT)
CREATE TABLE Whole (Id INT)
INSERT INTO Whole VALUES (1)
$Unread
$(Dropped)" "$(Statements | tail -n 12)"
AreThere ''
LogIs <<END
$(LogBegin)
Building Database Started....
error: [FreeTDS][SQL Server]the middle breaks @ / CREATE TABLE Broken ( / Id INT)
Database creation not finished...
END

Test 'after the script is mended a second run builds'
sed -i 's/Broken/Mended/' "$PackDir/SQLScript/Fresh/Build.sql"
# A server leaves the files of a database that is dropped while it is offline to its administrator.
rm -f "$Host/Data/"*
Play '@install Server; @finish'
AreThere 'One Two Clerk'
RecordIs < <(RecordBegin && RecordBegin &&
  printf '%s\n' UsrName:sa "PsWord:$SQL_PASSWORD" 'DBNames:2, [One], Two' 'DBLogins:1, Clerk')
Query master "$Remove"

Test 'a malformed script: everything is dropped'
InstallBelow Malformed
Pack 'FreshDBSript=Build.sql|Bad.sql'
Create | Script Build.sql
Script Bad.sql <<<'SELECT 1'
Play "@install Server; wait FrmSQLNonQuery; expect LblMsg text Script format is not correct....; $Closed"
Is 'the end of the statements' "$(Dropped)" "$(Statements | tail -n 8)"
AreThere ''

Test 'awkward scripts: missing, empty, without the last GO, with LF lines'
InstallBelow Awkward
Pack 'FreshDBSript=Missing.sql|Empty.sql|Build.sql|Tail.sql|Lines.sql'
Script Empty.sql </dev/null
Create | Script Build.sql
Script Tail.sql <<<$'--taluGO\nPRINT 1'
printf -- '--taluGO\nPRINT 2\nGO\n' >"$PackDir/SQLScript/Fresh/Lines.sql"
Play "@install Server; message File not found; $Failed"
Is 'the end of the statements' "CREATE LOGIN Clerk WITH PASSWORD = '***'
$(Dropped)" "$(Statements | tail -n 9)"
AreThere ''

Test 'the server cuts the line in the middle: the build comes to its end'
InstallBelow Cut
Pack FreshDBSript=Build.sql
{ Create && printf '%s\nGO\n' "PRINT 'Cut here'" 'PRINT 3'; } | Script Build.sql
Play "@install Server; message-begins [FreeTDS]; $Failed"
LogIs <<END
$(LogBegin)
Building Database Started....
error: [FreeTDS][SQL Server]* @ / PRINT 'Cut here'
error: [FreeTDS][SQL Server]* @ / PRINT 3
error: [FreeTDS][SQL Server]* @
error: [FreeTDS][SQL Server]* @
Database creation not finished...
END
Query master "$Remove"

Test 'without a database folder nothing is built'
InstallBelow NoFolder
Pack FreshDBSript=Build.sql DBFolder=
Create | Script Build.sql
Play '@install Server; wait FrmSQLNonQuery; expect LblMsg text Building Database. Please wait....
  expect CmdPrev enabled false; close FrmSQLNonQuery; ended 0'
AreThere ''
LogIs < <(LogBegin '' && printf '%s\n' 'Building Database Started....' 'error:  @')
# The page stays so: who waits for more is told at once.
Stops '@install Server; timeout 600; wait FrmApplication' \
  'FrmSQLNonQuery is shown; nothing more can come, the page says "Building Database. Please wait...."'

Test 'a build that has nothing to send is over at once: its page counts as seen'
InstallBelow Nothing
Pack FreshDBSript=Empty.sql
Script Empty.sql <<<--taluGO
Play '@install Server; wait FrmSQLNonQuery; @finish'

Test 'the server is gone when the data sources are made: the message, the end, no file copied'
InstallBelow Gone
Pack FreshDBSript=Build.sql 'SystemDSN=SQL Server,Gone,One,Clerk,Clerk-2012'
Create | Script Build.sql
# The login test, the backup and the build may connect, nobody after them.
python3 -B "$Root/tests/e2e/Proxy.py" "$Port" 3 >"$Machine/proxy" &
Soon 'the proxy' test -s "$Machine/proxy"
Server=127.0.0.1,$(<"$Machine/proxy") \
  Play '@install Server; message Connection to Server failed, Can not continue installation; ended 0'
AreThere 'One Two Clerk'
Is 'files' 'Data Ta-luErrLog.txt Uninstall.dat' "$(ls "$Host" | xargs)"
LogIs <<END
$(LogBegin)
Building Database Started....
Database creation completed successfully...
DSN creation started...
creating - SQL Server,Gone,One,Clerk,Clerk-2012
error: [FreeTDS][SQL Server]*
Connection to Server failed, Can not continue installation
END
