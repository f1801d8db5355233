# shellcheck shell=bash disable=SC2034
# Sourced by the commands and the end-to-end tests: builds what they need and makes machines to
# install on. Everything lies under build/; whatever is started here ends with the caller.
#
# A machine is a folder: wine/ is its prefix (wine/drive_c its C:), media/ its D:, shots/ what was
# photographed.

Root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
Machines=()
Folder='C:\Program Files'
Login=sa
# Files outside build/ to remove at the end.
Leavings=()

Fail() {
  echo "${0##*/}: $1" >&2
  exit 1
}

# Options ARGUMENT...: the options for which Usage has a line: "  --name VALUE" sets Name to the argument after
# it, "  --name  " to 1. Other words go into Words, where the first line of Usage ends in "...]".
Words=() Usage=${Usage:-}
Options() {
  while (($#)); do
    if [[ $1 == -h || $1 == --help ]]; then
      echo "$Usage"
      exit
    elif [[ $1 != -* && ${Usage%%$'\n'*} == *'...]' ]]; then
      Words+=("$1")
    elif [[ $1 =~ ^--([a-z]+)$ && $Usage == *$'\n'"  $1  "* ]]; then
      printf -v "${BASH_REMATCH[1]^}" 1
    elif [[ $1 =~ ^--([a-z]+)$ && $Usage == *$'\n'"  $1 "* ]]; then
      [[ -n ${2:-} ]] || Fail "$1 wants a value"
      printf -v "${BASH_REMATCH[1]^}" %s "$2"
      shift
    else
      Fail "unknown option $1 (--help lists them)"
    fi
    shift
  done
}

case $Root in
  *[\'\"\`\\\$\&\;\(\)\<\>\|\*\?\[\]\{\}\!#%^]* | *[[:cntrl:]]*)
    Fail "the path of this clone, $Root, has a character that builds and Wine stumble over: move it"
    ;;
esac

# Wine reads file names by the locale; builds and tools must not depend on it.
export LC_ALL=C.UTF-8
# Python's own files are not for the tree.
export PYTHONDONTWRITEBYTECODE=1

# Every program that is started from here on has this mark in its environment, and so do those that
# it starts and those that leave it and go on by themselves, as Wine's server does. A command within
# another one adds to its mark, so that each can end its own.
Mark=${TALU_RUN:-}/$$-${EPOCHREALTIME//[.,]/}

# Where the suites of ./test work, and the logs. A ./test within another one has its own.
Tests=${TALU_TESTS:-$Root/build/test}
Logs=$Root/build/log
Within=${TALU_RUN:-}
[[ -z $Within ]] || Logs=$Logs/within
export TALU_RUN=$Mark TALU_TESTS=$Tests
export TMPDIR=$Root/build/tmp/${Mark##*/}
mkdir -p "$Logs" "$TMPDIR"
chmod 700 "$TMPDIR"

# Occupy: this clone's build folder is ours, until we end; a command within ours shares it. A process of its
# own holds the lock and dies with us: a descriptor of ours would be handed down, and a program that outlives
# us would go on holding it.
Occupied=
Occupy() {
  local from held
  [[ -z $Within && -z $Occupied ]] || return 0
  exec {from}< <(exec setpriv --pdeathsig KILL flock --nonblock --no-fork "$Root/build/in-use" \
    sh -c 'echo held; exec sleep infinity' 2>/dev/null)
  IFS= read -r -u "$from" held || Fail "another command is at work in this clone: wait for it, or end it"
  exec {from}<&-
  Occupied=1
}

# MarkedProcesses: the numbers of the processes that have our mark.
MarkedProcesses() {
  local -x TALU_RUN= # those that look are not meant
  { grep -lzE "^TALU_RUN=$Mark(/|\$)" /proc/[0-9]*/environ || true; } 2>/dev/null | cut -d/ -f3
}

# EndMarked: ends them, by force after two seconds.
EndMarked() {
  local signal=TERM i processes
  for ((i = 0; i < 200; i++)); do
    mapfile -t processes < <(MarkedProcesses)
    ((${#processes[@]})) || return 0
    ((i < 40)) || signal=KILL
    ((i % 40)) || kill -$signal "${processes[@]}" 2>/dev/null || true
    sleep 0.05
  done
}

# A command for the end, when no program of a machine runs any more.
AtEnd=()

EndAll() {
  local status=$? machine process
  trap - ERR
  trap '' INT TERM HUP
  for machine in "${Machines[@]}"; do
    [[ ! -d $machine/wine ]] || WINEPREFIX=$machine/wine timeout 10 wineserver -k 2>/dev/null || true
  done
  ((${#AtEnd[@]} == 0)) || timeout 300 "${AtEnd[@]}" || ((status)) || status=1
  # Shells of our own that run in the background have no mark.
  for process in $(jobs -p); do kill "$process" 2>/dev/null || true; done
  EndMarked
  rm -rf "$TMPDIR" "${Leavings[@]}"
  exit "$status"
}
trap EndAll EXIT
set -o errtrace
trap 'echo "${0##*/}: \"$BASH_COMMAND\" failed (${BASH_SOURCE[0]##*/}, line $LINENO)" >&2' ERR
trap 'exit 130' INT
trap 'exit 143' TERM HUP

# Attend COMMAND...: runs it so that a signal ends it, and us, at once: while a command of its own runs in
# the foreground, the shell would leave the signal for later.
Attend() {
  "$@" <&0 &
  wait $!
}

# WaitFor SECONDS COMMAND...: repeats it until it succeeds; false after that time, a limit that only a failure
# should reach.
WaitFor() {
  local end=$((SECONDS + $1))
  until "${@:2}"; do
    ((SECONDS < end)) || return 1
    sleep 0.05
  done
}

# Build PRESET TARGET...: configures at the first time, builds, and says in one line what went wrong.
Build() {
  local preset=$1 log=$Logs/build-$1.log cache=$Root/build/$1/CMakeCache.txt ninja=$Root/build/$1/build.ninja
  shift
  Occupy
  [[ ! -f $cache ]] || grep -qxF "CMAKE_HOME_DIRECTORY:INTERNAL=$Root" "$cache" ||
    Fail "this clone was built in another place: remove $Root/build and start again"
  local ccache=()
  command -v ccache >/dev/null &&
    ccache=(-DCMAKE_C_COMPILER_LAUNCHER=ccache -DCMAKE_CXX_COMPILER_LAUNCHER=ccache)
  # A cache that several trees share finds what another one compiled.
  export CCACHE_DIR=${CCACHE_DIR:-$Root/build/ccache} CCACHE_BASEDIR=$Root CCACHE_NOHASHDIR=1
  : >"$log"
  # Later the build itself notices when it has to be configured again, except for these files.
  [[ -f $ninja && $ninja -nt $Root/CMakePresets.json && $ninja -nt $Root/tools/common.sh ]] ||
    Attend env -C "$Root" cmake --preset "$preset" "${ccache[@]}" >"$log" 2>&1 ||
    Fail "configuring $preset failed: $(grep -m1 -A2 'CMake Error' "$log" | tr '\n' ' ')(see $log)"
  Attend env -C "$Root" cmake --build --preset "$preset" ${1:+--target "$@"} >>"$log" 2>&1 ||
    Fail "building $preset failed: $(grep -m1 -E 'error:|FAILED' "$log") (see $log)"
}

# StartDisplay: a screen of its own, in DISPLAY. It is not reset when the last program leaves it: a reset
# would refuse a program that connects at that moment.
StartDisplay() {
  local number from
  # The line arrives when the screen is ready, the end of the file when it has failed.
  exec {from}< <(exec Xvfb -displayfd 3 -screen 0 "${1:-1280x1024}x24" -noreset -nolisten tcp \
    3>&1 >/dev/null 2>"$TMPDIR/Xvfb")
  IFS= read -r -t 120 -u "$from" number || Fail "Xvfb did not start: $(tail -n1 "$TMPDIR/Xvfb" | tr -d '\n')"
  exec {from}<&-
  export DISPLAY=:$number
}

# MakeBase [DPI]: the machine that others are copies of, in Base. It is made elsewhere and moved
# when it is complete, so that an interrupted one leaves nothing.
MakeBase() {
  local dpi=${1:-96} made wanted
  Base=$Root/build/machine-$dpi
  Occupy
  wanted=$(
    wine --version
    { cat "$Root"/{tools/wine/prefix,build/win32/tools/wine/*.dll,build/fonts/*} 2>/dev/null || true; } | sha256sum
  )
  # Suites may do this at the same time.
  exec {made}>"$Root/build/machine-$dpi.lock"
  flock "$made"
  # Machines share the base's libraries: it must be as it was made.
  if [[ ! -f $Base/made || $(<"$Base/made") != "$wanted" ||
  -n $(find "$Base/wine/drive_c/windows" -newer "$Base/made" -type f -print -quit) ]]; then
    rm -rf "$Base" "$Base.new"
    Attend "$Root/tools/wine/prefix" "$Base.new" "$Root/build/win32" --dpi "$dpi" \
      >/dev/null 2>"$Logs/prefix.log" {made}>&- && Attend SetDesktop "$dpi" >/dev/null 2>&1 {made}>&- ||
      Fail "the Wine prefix could not be made: $(tail -n1 "$Logs/prefix.log")"
    mv "$Base.new" "$Base"
    echo "$wanted" >"$Base/made"
  fi
  exec {made}>&-
}

# SetDesktop DPI: a desktop of Wine's own gives windows their captions.
SetDesktop() {
  export WINEPREFIX=$Base.new/wine WINEARCH=win32 WINEDEBUG=-all
  export -n TMPDIR
  wine reg add 'HKCU\Software\Wine\Explorer' /v Desktop /d Default /f &&
    wine reg add 'HKCU\Software\Wine\Explorer\Desktops' /v Default \
      /d "$((1024 * $1 / 96))x$((768 * $1 / 96))" /f &&
    wineserver -w
}

# MakeMachine DIR [DPI]: a fresh machine; its environment is set for what follows. It shares with the base
# the files that are replaced but never written to: the system's programs, libraries and fonts.
MakeMachine() {
  local dir=$1 windows
  MakeBase "${2:-96}"
  rm -rf "$dir"
  mkdir -p "$(dirname "$dir")"
  cp -al "$Base" "$dir"
  dir=$(cd "$dir" && pwd)
  windows=$dir/wine/drive_c/windows
  find "$dir" -type f ! \( -path "$windows/*" -iregex '.*\.\(acm\|ax\|com\|cpl\|dll\|drv\|ds\|exe\|fon\|msstyles\|nls\|ocx\|sys\|tlb\|ttf\|winmd\)' \) \
    -exec sh -c 'for file; do cp -p "$file" "$file.own" && mv "$file.own" "$file"; done' - {} +
  Machines+=("$dir")
  mkdir -p "$dir/media" "$dir/shots"
  chmod 700 "$dir" # log, record and what is installed have passwords
  ln -sfn "$dir/media" "$dir/wine/dosdevices/d:"
  rm -f "$dir/odbc/odbc.ini"
  # Debian 13's Wine crashes at start-up with this in its environment.
  export -n TMPDIR
  export WINEPREFIX=$dir/wine WINEARCH=win32 WINEDEBUG=${WINEDEBUG:--all} \
    WINEDLLOVERRIDES='mscoree,mshtml=;winemenubuilder.exe=d' ODBCSYSINI=$dir/odbc ODBCINI=/dev/null TDSVER=7.3
  Machine=$dir
}

# PutPack DIR: the pack with Setup.exe as D:\Pack of the machine.
PutPack() {
  rm -rf "$Machine/media/Pack"
  cp -rL "$1" "$Machine/media/Pack" # a link to a pack would lead what follows to the pack itself
  chmod -R u+w "$Machine/media/Pack"
  cp "$Root/build/win32/src/platform/win32/Setup.exe" "$Machine/media/Pack/"
}

# SmallPack DIR [KEY=LINE|LINE...]...: a small pack with Setup.exe, with these blocks in its configuration,
# which is in CodePage, 1252 unless that is set.
SmallPack() {
  local dir=$1 block
  shift
  rm -rf "$dir"
  mkdir -p "$dir/Application/Sub" "$dir/SQLScript/Fresh"
  echo one >"$dir/Application/One.txt"
  echo two >"$dir/Application/Sub/Two.txt"
  for block in AppTitle=Small AppFolder=Small DBFolder=Data; do
    [[ " $*" == *" ${block%%=*}="* ]] || set -- "$@" "$block"
  done
  for block in "$@"; do
    printf '%s\n{\n' "${block%%=*}"
    [[ -z ${block#*=} ]] || tr '|' '\n' <<<"${block#*=}"
    echo '}'
  done | sed 's/$/\r/' | iconv -t "CP${CodePage:-1252}" >"$dir/AppCfg.txt"
  cp "$Root/build/win32/src/platform/win32/Setup.exe" "$dir/"
}

# StartServer DATA DRIVE_C [OPTION...]: the stand-in server, on a free port unless an option says --port;
# its address is in Server, its journal in ServerData. The password is in SQL_PASSWORD. It refuses what it
# does not know, unless Lenient is set.
StartServer() {
  local data=$1 drive=$2 out
  shift 2
  [[ " $* " == *' --port '* ]] || set -- --port 0 "$@"
  [[ -n ${Lenient:-} ]] || set -- --strict "$@"
  mkdir -p "$data" "$drive"
  ServerData=$data
  out=$data/listening
  : >"$out"
  SQLSTANDIN_PASSWORD=$SQL_PASSWORD "$Root/build/release/tools/sqlstandin/sqlstandin" \
    --data "$data" --drive "C=$drive" --journal "$data/journal.jsonl" "$@" >"$out" 2>"$data/errors" &
  ServerProcess=$!
  WaitFor 120 ServerListensOrEnded && grep -qs listening "$out" ||
    Fail "sqlstandin did not start: $(head -n1 "$data/errors")"
  Port=$(grep -oE '[0-9]+$' "$out")
  Server=127.0.0.1,$Port
}
ServerListensOrEnded() { grep -qs listening "$ServerData/listening" || ! kill -0 "$ServerProcess" 2>/dev/null; }

StopServer() {
  kill "$ServerProcess" 2>/dev/null && wait "$ServerProcess" 2>/dev/null || true
}

# AtServer COMMAND...: tools/rehearsal/AtServer.py, at the server of the machines, as Login.
AtServer() { python3 -B "$Root/tools/rehearsal/AtServer.py" "$Server" "$Login" "$@"; }

# Query DATABASE STATEMENT: the rows, by the wire, or why there are none.
Query() { AtServer query "$1" "$2" 2>&1 || true; }

# ScriptsOf PACK TYPE: the scripts that the pack lists for Fresh, Demo or Upgrade.
ScriptsOf() {
  tr -d '\r' <"$1/AppCfg.txt" |
    awk -v key="$2DBSript" '$0 == key {k = 1} k && $0 == "}" {exit} k == 2 {print} k && $0 == "{" {k = 2}'
}

# PlanOf PACK MODE TYPE [OPTION...]: what packcheck foretells of this installation below Folder, in JSON; its
# server accepts everything.
PlanOf() {
  local status=0
  "$Root/build/release/tools/packcheck/packcheck" plan "$1" --mode "$2" --type "${3,}" --server "${Server:-SERVER}" \
    --user "$Login" --password-from SQL_PASSWORD --install-path "$Folder" --accept-all --json "${@:4}" \
    2>"$TMPDIR/plan.log" || status=$?
  ((status < 2)) || Fail "the plan: $(head -n1 "$TMPDIR/plan.log")"
}

# LoadScripts PACK TYPE DRIVE_C [LETTER=FOLDER]...: what the pack's scripts for Fresh, Demo or Upgrade make, on the
# server, sent as the wizard would, without it. The server's drives are these folders.
LoadScripts() {
  local Folder='C:\Before' said
  PlanOf "$1" server "$2" >"$TMPDIR/load.jsonl"
  said=$(AtServer load "$TMPDIR/load.jsonl" "C=$3" "${@:4}" 2>&1) || Fail "$said"
}

# Drive SCRIPT [OPTION...]: plays a script, in which FOLDER is $Folder, with Program, which is the Setup.exe of the pack
# at PackPath, D:\Pack, unless these are set; its output is in Machine/drive.log.
Drive() {
  local script=$1
  shift
  Attend Logged "$Machine/drive.log" wine "$Root/build/win32/tools/drive/drive.exe" "Z:${script//\//\\}" \
    --start "${Program:-${PackPath:-D:\\Pack}\\Setup.exe}" \
    --shots "Z:${Machine//\//\\}\\shots" --set "SERVER=${Server:-none}" \
    --set "FOLDER=$Folder" --end-on-failure -v "$@"
}
# Logged FILE COMMAND..., behind Attend: only the command's output goes there, not what we say when a signal ends us.
Logged() { exec "${@:2}" </dev/null >"$1" 2>&1; }

# Walk MODE [TYPE [PICTURES]]: steps of docs/drive.md from the first page of a Server or Client installation
# through the location page; of the type that the wizard proposes unless told; with pictures where that is set.
Walk() {
  printf '%s\n' 'wait FrmType' ${2:+"click Opt$2"} ${3:+'shot 1-type.png'} 'click CmdNext' \
    'wait FrmMode' "click Opt$1" ${3:+'shot 2-mode.png'} 'click CmdNext'
  [[ $1 == Client ]] || printf '%s\n' 'wait FrmAuthentication' "type TxtUsrName $Login" \
    'type TxtPsWord ${env:SQL_PASSWORD}' 'type TxtServer ${SERVER}' ${3:+'shot 3-authentication.png'} \
    'click CmdNext'
  printf '%s\n' 'wait FrmLocation' 'click CmdLocation' 'browse ${FOLDER}'
  [[ $1 == Server ]] || echo 'type TxtServer ${SERVER}'
  printf '%s\n' ${3:+'shot 4-location.png'} 'click CmdNext'
}

# Finish [STEP...]: the steps at the end of an installation, these before the last.
Finish() {
  printf '%s\n' 'wait FrmApplication' 'expect CmdNext enabled true' \
    'expect Lblmsg text Installation finished. Click Finish to Exit.' "$@" finish
}
