# shellcheck shell=bash disable=SC2154,SC2034
# Sourced by ./demo: what is looked at before anything starts, and what is told at the end.

# CheckOptions: the options belong together. Own: the server is one of the command line; Shown: in place of its password.
CheckOptions() {
  [[ $Mode == server || $Mode == client ]] || Fail "--mode is server or client"
  [[ $Type == fresh || $Type == demo || $Type == upgrade ]] || Fail "--type is fresh, demo or upgrade"
  [[ -z $Pack || -f $Pack/AppCfg.txt ]] || Fail "$Pack is no pack: it has no AppCfg.txt"
  [[ -z $Script || -f $Script ]] || Fail "there is no script $Script"
  [[ -z $Show || -n ${DISPLAY:-} ]] || Fail "--show wants a display"
  [[ $Out == "$Root/build/demo" || ! -e $Out || -f $Out/drive.log || -z $(ls -A "$Out") ]] || Fail "$Out is not empty and no earlier demo's"
  [[ $Folder =~ ^[Cc]:(\\[^\\/]+)+$ ]] || Fail "--folder is a folder of C:"
  Own=${Server:+1} Shown=${Server:+that of SQL_PASSWORD}
  [[ -n $Own || $Login == sa ]] || Fail "--login goes with --server"
  [[ -z $Own || -z $Break ]] || Fail "--break goes without --server"
  [[ -z $Break || $Mode == server ]] || Fail "--break goes with --mode server"
  [[ -z $Own || -n ${SQL_PASSWORD:-} ]] || Fail "--server wants the password in SQL_PASSWORD"
  [[ -n $Own ]] || SQL_PASSWORD=Demo-2012
  export SQL_PASSWORD
}

# CheckPack PACK: packcheck's word on it; what it calls an error ends the demo, unless Anyway is set.
CheckPack() {
  local status=0 said=$TMPDIR/check
  "$Root/build/release/tools/packcheck/packcheck" check "$1" >"$said" 2>&1 || status=$?
  ((status < 3)) || Fail "packcheck: $(tail -n 1 "$said")"
  ((status == 2)) || {
    echo "packcheck: $(tail -n 1 "$said")"
    return
  }
  { grep ': error ' "$said" || cat "$said"; } | sed -n '1,10p; 11s/.*/.../p' >&2
  [[ -n $Anyway ]] || Fail "packcheck check finds errors in $1: mend them (or --anyway)"
}

# ReachServer: the server of the command line can be used.
ReachServer() {
  local said
  said=$(AtServer reach 2>&1) || Fail "$said"
}

# MakePlans PACK: what is going to be sent, in Plans: of the demo, and before it of what the server has to have. Where
# a person or a script of the caller's chooses, each type may be sent: the plans of all are in Possible.
MakePlans() {
  local before=$Folder type
  Before=$TMPDIR/before.json Plans=() Possible=() Drives=()
  # A stand-in's files are on the machine where the wizard is to find no earlier installation.
  [[ -n $Own ]] || before='C:\Before'
  if [[ $Mode == client || $Type == upgrade ]]; then
    Plans=("$TMPDIR/ready.jsonl")
    Folder=$before PlanOf "$1" server fresh >"${Plans[0]}"
  fi
  Plans+=("$TMPDIR/plan.jsonl")
  PlanOf "$1" "$Mode" "$Type" ${Break:+"--fail-sql=$Break"} >"${Plans[-1]}"
  # Otherwise the wizard would build another type, of which nothing has been looked at.
  grep -qF '"form":"FrmMode"' "${Plans[-1]}" || Fail "--type $Type: the pack has scripts for other types only"
  [[ -z $Break ]] || grep -q '"event":"sql".*"ok":false' "${Plans[-1]}" || Fail "--break: no batch has this text"
  [[ -z $Own || -z $Script$Show ]] || for type in fresh demo upgrade; do
    Possible+=("$TMPDIR/$type.jsonl")
    PlanOf "$1" server "$type" >"${Possible[-1]}"
  done
}

# BeginAtServer: nothing on the server of the command line is in the way, and what is new there at the end goes.
BeginAtServer() {
  local said
  { said=$(AtServer begin "${Plans[@]}" "${Possible[@]}" 2>&1 >&3) || Fail "$said"; } 3>"$Before"
  AtEnd=(python3 -B "$Root/tools/rehearsal/AtServer.py" "$Server" "$Login" drop "$Before" "${Plans[@]}" "${Possible[@]}")
}

# OtherDrives: the letters of the drives beside C: on which the server has to have files before.
OtherDrives() {
  ((${#Plans[@]} > 1)) || return 0
  { grep -oiE "FILENAME( |\\\\[nrt])*=( |\\\\[nrt])*N?'[ABD-Z]:" "${Plans[0]}" | grep -oE '.:$' | tr -d : | sort -u; } || true
}

# StartStandIn OPTION...: a server for this machine, with every drive that it has to have files on before.
StartStandIn() {
  local drive=$Machine/wine/drive_c letter
  [[ $Mode == server ]] || drive=$Machine/server/drive_c
  Drives=("C=$drive")
  for letter in $(OtherDrives); do
    mkdir -p "$Machine/server/drive_$letter"
    Drives+=("$letter=$Machine/server/drive_$letter")
    set -- "$@" --drive "${Drives[-1]}"
  done
  StartServer "$Machine/server" "$drive" --report "$Machine/server/report.json" ${Break:+"--fail-text=$Break"} "$@"
}

# MakeReady: the folder is there, the server has what a client or an upgrade needs, and what that is, is in Before.
MakeReady() {
  local said below=${Folder:3}
  mkdir -p "$Machine/wine/drive_c/${below//\\//}"
  if ((${#Plans[@]} > 1)); then
    said=$(AtServer load "${Plans[0]}" "${Drives[@]}" 2>&1) ||
      Fail "$(python3 -B "$Root/tools/rehearsal/installed" "$Machine" <<<"$said")" # what the server says has the batch's words
  fi
  [[ -n $Own ]] || AtServer names >"$Before"
  First=$(JournalLines)
}

# JournalLines: how much the stand-in has been told so far.
JournalLines() { [[ -n $Own ]] || wc -l <"$ServerData/journal.jsonl"; }

# WriteScript FILE: the drive script for the whole installation, with a picture of every page. A type that the pack
# has no scripts for is not clicked.
WriteScript() {
  local type=${Type^}
  [[ -n $(ScriptsOf "$Machine/media/Pack" "$type") ]] || type=
  {
    Walk "${Mode^}" "$type" pictures
    echo 'timeout 600'
    [[ $Mode == client ]] || printf '%s\n' 'wait FrmSQLNonQuery' 'shot 5-database.png'
    if [[ -n $Break ]]; then
      printf '%s\n' 'message-begins [' 'expect LblMsg text Database creation not finished...' 'close FrmSQLNonQuery' 'ended 0'
    else
      Finish 'expect ShpProgBar width 7325' 'shot 6-application.png'
    fi
  } >"$1"
}

# Tell SECONDS: what became of the scripts' batches; false when it is not what was planned.
Tell() {
  [[ $Mode == server ]] || return 0
  local options=(--plan "${Plans[-1]}" --before "$Before" --out "$Machine" --seconds "$1"
    --title "$(basename "$(realpath "$Pack")"): $Type, $Mode, at $Server, $(date '+%F %R')")
  if [[ -z $Own ]]; then
    StopServer # it writes its report then
    options+=(--journal "$ServerData/journal.jsonl" --lines "$First" "$Last" --state "$ServerData/report.json")
  elif AtServer state "$Before" >"$TMPDIR/state.json"; then
    options+=(--state "$TMPDIR/state.json")
  fi
  [[ -z $Script ]] || options+=(--unplanned)
  [[ -z $Break ]] || options+=(--broken)
  python3 "$Root/tools/rehearsal/Report.py" "$Machine" "${options[@]}"
}
