# shellcheck shell=bash disable=SC2154,SC2034
# The sample in all six kinds of installation: what packcheck foretells is what the machine and the
# server then see, byte for byte.
Public='C:\users\Public\Desktop' Start='C:\ProgramData\Microsoft\Windows\Start Menu'
printf '%s\n' "$Public" "$Start" "$Start\\Programs" "$Start\\Programs\\StartUp" >"$Machine/special-folders"
DriveC=$Machine/wine/drive_c
PutPack "$Sample"

for Mode in Server Client; do
  for Type in Fresh Demo Upgrade; do
    Test "$Type, $Mode"
    InstallBelow "$Type $Mode" SalesDesk
    Data="$Machine/data of $Type $Mode" There=() Before=0
    ServerDrive=$DriveC
    [[ $Mode == Server ]] || ServerDrive=$Data/drive_c
    StartServer "$Data" "$ServerDrive"
    if [[ $Mode == Client || $Type == Upgrade ]]; then
      LoadScripts "$Sample" Fresh "$ServerDrive"
      Before=$(Statements | wc -l)
      There=(--database SalesDesk_Sales --database SalesDesk_Stock --login SalesDeskUser)
    fi
    rm -rf "$Machine/before" "$Machine/plan"
    cp -al "$DriveC" "$Machine/before"
    Play "@install $Mode $Type; @finish"

    # The minute is in the names of the backups.
    Stamp=$(grep -m1 -oE '_[0-9_]+\.bkp' "$ServerData/journal.jsonl" | tr -c '0-9\n' ' ' || true)
    read -r Day Month Year Hour Minute <<<"${Stamp:-1 1 2026 0 0}"
    "$Root/build/release/tools/packcheck/packcheck" plan "$Sample" --type "${Type,}" --mode "${Mode,}" \
      --server "$Server" --user sa --password "$SQL_PASSWORD" --install-path "$Folder" \
      --now "$(printf '%04d-%02d-%02d %02d:%02d' "$Year" "$Month" "$Day" "$Hour" "$Minute")" \
      --disk "$Machine/before" --special-folders "$Machine/special-folders" "${There[@]}" \
      --exit LabelPrinter.exe=7 --json --save "$Machine/plan" >"$Machine/plan.jsonl" 2>"$Machine/out" ||
      Problems+=("the plan: $(<"$Machine/out")")
    Is 'statements' "$(python3 -B "$Texts" statements "$Machine/plan.jsonl")" \
      "$(Statements | tail -n +$((Before + 1)))"
    for Name in Ta-luErrLog.txt Uninstall.dat; do
      True "$Name" cmp "$Machine/plan/C/$Type $Mode/TA-LU/SalesDesk/$Name" "$Host/$Name"
    done
    # What the server writes is the server's.
    True 'the installed tree' diff -r -x '*.mdf' -x '*.ldf' -x '*.bkp' \
      "$Machine/plan/C/$Type $Mode" "$DriveC/$Type $Mode"
    StopServer
  done
done
