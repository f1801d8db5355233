# shellcheck shell=bash disable=SC2154,SC2034
# A server that is not ours: that of ./test e2e --server, or a stand-in of which the cases know no more than its
# address. Its machine has the folders of docs/rehearsal.md.
# shellcheck source=tools/rehearsal/demo.sh
source "$Root/tools/rehearsal/demo.sh"
InstallBelow TaluTest SalesDesk
Own=1 Mode=server Type=fresh Break='' Script='' Show='' Stamp=$EPOCHSECONDS
Broken=$Machine/Broken
SmallPack "$Broken" FreshDBSript=Build.sql
{
  printf '%s\nGO\n' "--taluGO
    CREATE DATABASE TaluBroken ON (NAME = TaluBroken, FILENAME = 'C:\\Old\\TaluBroken$Stamp.mdf')" \
    "CREATE LOGIN TaluClerk WITH PASSWORD = N'Clerk-2012'" 'INSERT INTO TaluNoSuchTable VALUES (1)'
} | sed 's/$/\r/' >"$Broken/SQLScript/Fresh/Build.sql"

# The rows are those that the stand-in of every other group would have.
StartServer "$Machine/reference" "$Machine/reference/drive_c"
LoadScripts "$Sample" Fresh "$Machine/reference/drive_c"
Rows=$(Counts)
StopServer

if [[ -n ${TALU_SERVER:-} ]]; then
  Server=$TALU_SERVER Login=$TALU_LOGIN
else
  mkdir -p "$Machine/server/drive_c/TaluTest/TA-LU"/{SalesDesk/Data,'SalesDesk BackUp',Small/Data}
  StartServer "$Machine/server" "$Machine/server/drive_c"
fi
ServerData=
PlanOf "$Broken" server fresh >"$Machine/broken.jsonl"
MakePlans "$Sample"
Plans+=("$Machine/broken.jsonl")
BeginAtServer

Test 'fresh: log, record and tree as foretold, rows as elsewhere'
PutPack "$Sample"
Foretold "$Sample" Server Fresh --special-folders "$(SpecialFolders)" --exit LabelPrinter.exe=7
Is 'rows' "${Rows:-none}" "$(Counts)"

Test 'an upgrade over it: the databases are backed up first'
There=(--database SalesDesk_Sales --database SalesDesk_Stock --login SalesDeskUser)
Foretold "$Sample" Server Upgrade --special-folders "$(SpecialFolders)" --exit LabelPrinter.exe=7 "${There[@]}"
Is 'tables' SalesDesk_Sales.Note "$(Counts | grep -o 'SalesDesk_Sales.Note' || true)"

Test 'a build that fails leaves no database and no login'
PutPack "$Broken"
Play "@install Server; message-begins [; expect LblMsg text Database creation not finished...
  close FrmSQLNonQuery; ended 0"
# What stands before shows that there was an answer.
Is 'what is left' SalesDesk_Sales "$(AtServer names | grep -oE 'TaluBroken|TaluClerk|SalesDesk_Sales')"

Test 'all that is new there is dropped'
True 'dropping' "${AtEnd[@]}"
Is 'names' "$(<"$Before")" "$(AtServer names)"
AtEnd=()
