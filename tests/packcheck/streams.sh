#!/usr/bin/env bash
# packcheck as a program: what it says on which stream, and how it ends. Usage: streams.sh PACKCHECK
set -u
packcheck=$1
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
failures=0

# Is WHAT ACTUAL EXPECTED
Is() {
  [[ $2 == "$3" ]] && return
  echo "FAILED: $1: '$2' in place of '$3'"
  failures=$((failures + 1))
}

pack=$folder/pack
python3 -B "${0%/*}/EveryByte.py" make "$pack"
plan=(plan "$pack" --type fresh --mode)
for command in "check $pack" "${plan[*]} server" "${plan[*]} client" "${plan[*]} server --fail-sql PRINT"; do
  # shellcheck disable=SC2086
  "$packcheck" $command --json >"$folder/out"
  Is "$command --json" "$(python3 -B "${0%/*}/EveryByte.py" lines "$folder/out" 2>&1)" ''
done

# Its own failures are on standard error, in one line, and end with 2.
mkdir "$folder/huge" "$folder/wrong" "$folder/empty"
printf 'PRINT 1' >"$folder/a.sql"
: >"$folder/wrong/"$'\xff\xfe'
truncate -s 3G "$folder/huge/AppCfg.txt"
export ASAN_OPTIONS=max_allocation_size_mb=1000 # the 3 GB would be taken for good
while IFS='|' read -r command expected; do
  # shellcheck disable=SC2086
  "$packcheck" $command >"$folder/out" 2>"$folder/error"
  Is "$command" "$? $(wc -c <"$folder/out") $(<"$folder/error")" "2 0 packcheck: $expected"
done <<CASES
check $folder/nowhere --json|there is no folder $folder/nowhere
check $folder/nowhere|there is no folder $folder/nowhere
check --explain NONE|no finding is called NONE; "all" explains every one
convert $folder/nowhere|there is no file $folder/nowhere
convert $folder/a.sql --to $folder --in-place|convert: --to and --in-place exclude each other
convert $folder/a.sql --code-page 12345|this system has no ANSI code page 12345
fix $folder/nowhere|there is no folder $folder/nowhere
fix $folder/empty|$folder/empty is no pack: it has no AppCfg.txt
check $folder/huge|AppCfg.txt: Out of memory
check $folder/huge --json|AppCfg.txt: Out of memory
check $folder/wrong --json|$folder/wrong/$(printf '\xef\xbf\xbd\xef\xbf\xbd'): the name is not UTF-8
check $pack --code-page 12345|this system has no ANSI code page 12345
plan $folder/nowhere --type fresh --mode client --json|PACK: "$folder/nowhere" is not a folder
CASES
Is 'a plan of a huge configuration' "$("$packcheck" plan "$folder/huge" --type fresh --mode client 2>&1 |
  sed -n '/^  message/,/^$/p' | tr -s ' \n' ' ')" " message Run-time error '7': Out of memory "

# A file that may not be read is named, to root too, without what makes root an exception.
lesser=()
((EUID)) || lesser=(setpriv --bounding-set=-all --inh-caps=-all)
small=$folder/small
mkdir -p "$small/SQLScript/Fresh" "$small/Application"
printf '%s\r\n{\r\n%s\r\n}\r\n' AppTitle A AppFolder App DBFolder Data FreshDBSript f.sql >"$small/AppCfg.txt"
printf '%s\r\n' --taluLineByLine 'USE master' >"$small/SQLScript/Fresh/f.sql"
for file in AppCfg.txt SQLScript/Fresh/f.sql; do
  chmod 0 "$small/$file"
  for command in "check $small" "plan $small --type fresh --mode server"; do
    # shellcheck disable=SC2086
    Is "$command without $file" "$("${lesser[@]}" "$packcheck" $command 2>&1 >"$folder/out" || echo $?)" \
      "packcheck: $small/$file cannot be read: Permission denied"$'\n2'
  done
  chmod 644 "$small/$file"
done

# A standard output that takes nothing, or is closed. What is saved then has none of it.
while read -r command; do
  # shellcheck disable=SC2086
  "$packcheck" $command >/dev/full 2>"$folder/error"
  Is "$command >/dev/full" "$? $(<"$folder/error")" '2 packcheck: standard output cannot be written'
  rm -rf "$folder/saved"
  # shellcheck disable=SC2086
  "$packcheck" $command >&- 2>"$folder/error"
  Is "$command >&-" "$? $(<"$folder/error")" '2 packcheck: standard output cannot be written'
done <<CASES
--help
check --help
plan --help
check $pack
check $pack --json
check --explain all
check --explain CFG-MISSING
convert --help
convert $folder/a.sql --in-place
convert $folder/a.sql --to $folder/saved
fix $pack
${plan[*]} client
${plan[*]} client --json
${plan[*]} client --save $folder/saved
CASES
# The first trouble is the one that is told.
"$packcheck" check "$folder/nowhere" >&- 2>"$folder/error"
Is 'a failure >&-' "$? $(<"$folder/error")" "2 packcheck: there is no folder $folder/nowhere"
Is 'what could not be shown' "$(cat "$folder"/a.sql* "$folder"/saved/a.sql 2>/dev/null)" 'PRINT 1'
grep -rqs 'installation in client mode' "$folder/saved" && Is 'what was saved' 'the account' 'files'
exit $((failures > 0))
