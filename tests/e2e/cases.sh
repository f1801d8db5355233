# shellcheck shell=bash disable=SC2154,SC2034
# Sourced by tests/e2e/run and, through it, by the groups of cases: the wizard's real windows on a machine
# of the group's own. A case begins with Test and lasts until the next; every check in it that fails is
# told with it. The smallest one:
#
#   Test 'an installation comes to its end'
#   Pack
#   Play '@install Client; @finish'

# shellcheck source=tools/common.sh
source "$(dirname "${BASH_SOURCE[0]}")/../../tools/common.sh"
Texts=$Root/tests/e2e/Texts.py
Sample=$Root/build/win32/samples/SalesDesk/pack
CaseName='' CaseBegin='' Problems=()
[[ -n ${TALU_SERVER:-} ]] || export SQL_PASSWORD=Demo-2012

Test() {
  EndTest
  CaseName=$1 CaseBegin=$(date +%s%N)
}

EndTest() {
  [[ -n $CaseName ]] || return 0
  local tenths=$((($(date +%s%N) - CaseBegin) / 100000000)) result=passed
  ((${#Problems[@]} == 0)) || result=FAILED
  printf '%s %s: %s (%d.%d s)\n' "$result" "$Group" "$CaseName" $((tenths / 10)) $((tenths % 10))
  ((${#Problems[@]} == 0)) || printf '%s\n' "${Problems[@]}" | sed 's/^/    /'
  Problems=() CaseName=
}

# Pack [KEY=LINE|LINE...]...: a small pack on the machine, with these blocks in its configuration.
Pack() { SmallPack "$PackDir" "$@"; }

# Script NAME < TEXT: one of the pack's fresh scripts.
Script() { sed 's/$/\r/' | iconv -t "CP${CodePage:-1252}" >"$PackDir/SQLScript/Fresh/$1"; }

# InstallBelow FOLDER [APPFOLDER]: installs below this folder of C: from now on. App is the application
# folder, Host the same for this side.
InstallBelow() {
  Folder="C:\\$1"
  App="$Folder\\TA-LU\\${2:-Small}"
  Host=$Machine/wine/drive_c/$1/TA-LU/${2:-Small}
  mkdir -p "$Machine/wine/drive_c/$1"
}

# Play STEPS: plays steps of docs/drive.md, several on a line, separated by "; ". Three stand for more:
# "@location MODE [TYPE]" goes to the location page, "@install MODE [TYPE]" chooses the location there
# and goes on, "@finish" is the end of an installation.
Play() {
  sed 's/; /\n/g; s/^ *//' <<<"$1" | Expand >"$Machine/script.txt"
  Drive "$Machine/script.txt" --timeout 120 || Problems+=("$(grep -v ' ok (' "$Machine/drive.log" | tail -n 3)")
}

Expand() {
  local step mode type
  while read -r step mode type; do
    case $step in
      @location) Walk "$mode" "$type" | sed '/^click CmdLocation$/,$d' ;;
      @install) Walk "$mode" "$type" ;;
      @finish) Finish ;;
      *) echo "$step $mode $type" ;;
    esac
  done
}

# Is WHAT EXPECTED ACTUAL
Is() {
  [[ $2 == "$3" ]] ||
    Problems+=("$1 (< expected, > found):"$'\n'"$(diff <(echo "$2") <(echo "$3") | sed -n 1,20p || true)")
}

# True WHAT COMMAND...: the command succeeds.
True() { "${@:2}" >"$Machine/out" 2>&1 || Problems+=("$1: $(head -n 30 "$Machine/out")"); }

# Soon WHAT COMMAND...: the same, sooner or later.
Soon() { WaitFor 120 "${@:2}" >/dev/null 2>&1 || True "$@"; }

# Statements: what the server that was started last was told, one statement a line; of one that is not ours (then
# ServerData is empty) nobody can tell.
Statements() { [[ -z $ServerData ]] || python3 -B "$Texts" statements "$ServerData/journal.jsonl"; }

# Counts: every table of the sample's databases with its number of rows, over the wire.
Counts() {
  local database table
  for database in SalesDesk_Sales SalesDesk_Stock; do
    for table in $(Query "$database" 'SELECT name FROM sys.tables ORDER BY name'); do
      echo "$database.$table $(Query "$database" "SELECT COUNT(*) FROM [$table]")"
    done
  done
}

# SpecialFolders: a file with the machine's folders for shortcuts that the sample names, as packcheck takes them.
SpecialFolders() {
  local start='C:\ProgramData\Microsoft\Windows\Start Menu'
  printf '%s\n' 'C:\users\Public\Desktop' "$start" "$start\\Programs" "$start\\Programs\\StartUp" \
    >"$Machine/special-folders"
  echo "$Machine/special-folders"
}

# Foretold PACK MODE TYPE [OPTION...]: installs below Folder; what packcheck plan foretells with these options
# is what the machine and the server then see, byte for byte. Steps are others than the usual ones, Except the files
# that no plan can foretell.
Foretold() {
  local pack=$1 mode=$2 type=$3 before stamp day month year hour minute drive=$Machine/wine/drive_c name
  shift 3
  before=$(Statements | wc -l)
  rm -rf "$Machine/before" "$Machine/plan"
  cp -al "$drive" "$Machine/before"
  # The wizard writes on in the record of an earlier installation.
  [[ ! -d $Host ]] || cp -a --remove-destination "$Host" "$(dirname "$Machine/before/${Host#"$drive/"}")"
  Play "${Steps:-@install $mode $type; @finish}"

  # The minute is in the names of the backups.
  stamp=$(cat <(ls "$Host BackUp" 2>/dev/null) ${ServerData:+"$ServerData/journal.jsonl"} | grep -m1 -oE '(_[0-9]+){5}(\.bkp|$)' |
    tr -c '0-9\n' ' ' || true)
  read -r day month year hour minute <<<"${stamp:-1 1 2026 0 0}"
  "$Root/build/release/tools/packcheck/packcheck" plan "$pack" --type "${type,}" --mode "${mode,}" \
    --server "$Server" --user "$Login" --password-from SQL_PASSWORD --install-path "$Folder" \
    --now "$(printf '%04d-%02d-%02d %02d:%02d' "$year" "$month" "$day" "$hour" "$minute")" \
    --disk "$Machine/before" --code-page "${CodePage:-1252}" --pack-path "${PackPath:-D:\\Pack}" "$@" \
    --json --save "$Machine/plan" >"$Machine/plan.jsonl" 2>"$Machine/out" ||
    (($? == 1)) || Problems+=("the plan: $(<"$Machine/out")") # with 1 it ends when something fails in it
  [[ -z $ServerData ]] || Is 'statements' "$(python3 -B "$Texts" statements "$Machine/plan.jsonl")" \
    "$(Statements | tail -n +$((before + 1)))"
  for name in Ta-luErrLog.txt Uninstall.dat; do
    True "$name" cmp "$Machine/plan/C/${Host#"$drive/"}/$name" "$Host/$name"
  done
  # What the server writes is the server's.
  True 'the installed tree' diff -r -x "${Except:-}" -x '*.mdf' -x '*.ldf' -x '*.bkp' \
    "$Machine/plan/C/${Folder:3}" "$drive/${Folder:3}"
}
