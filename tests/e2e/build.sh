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
True 'the log' grep -qF '[FreeTDS][SQL Server]the middle breaks' "$Host/Ta-luErrLog.txt"

Test 'after the script is mended a second run builds'
sed -i 's/Broken/Mended/' "$PackDir/SQLScript/Fresh/Build.sql"
# A server leaves the files of a database that is dropped while it is offline to its administrator.
rm -f "$Host/Data/"*
Play '@install Server; @finish'
AreThere 'One Two Clerk'
Is 'the record' 'DBNames:2, [One], Two' "$(tr -d '\r' <"$Host/Uninstall.dat" | grep ^DBNames)"
Query master "$Remove"

Test 'the server cuts the line in the middle: the build comes to its end'
InstallBelow Cut
Pack FreshDBSript=Build.sql
{ Create && printf '%s\nGO\n' "PRINT 'Cut here'" 'PRINT 3'; } | Script Build.sql
Play "@install Server; message-begins [FreeTDS]; $Failed"
Is 'errors in the log' 4 "$(grep -c '^\[FreeTDS\]\[SQL Server\]' "$Host/Ta-luErrLog.txt")"
Query master "$Remove"

Test 'without a database folder nothing is built'
InstallBelow NoFolder
Pack FreshDBSript=Build.sql DBFolder=
Create | Script Build.sql
Play '@install Server; wait FrmSQLNonQuery; expect LblMsg text Building Database. Please wait....
  expect CmdPrev enabled false; close FrmSQLNonQuery; ended 0'
AreThere ''
# The page stays so: who waits for more is told at once.
Stops '@install Server; timeout 600; wait FrmApplication' \
  'FrmSQLNonQuery is shown; nothing more can come, the page says "Building Database. Please wait...."'

Test 'a build that has nothing to send is over at once: its page counts as seen'
InstallBelow Nothing
Pack FreshDBSript=Empty.sql
Script Empty.sql <<<--taluGO
Play '@install Server; wait FrmSQLNonQuery; @finish'
