# shellcheck shell=bash disable=SC2154,SC2034
# The sample in all six kinds of installation: what packcheck foretells is what the machine and the
# server then see, byte for byte, and the databases have the rows that another client makes of the scripts.
DriveC=$Machine/wine/drive_c
PutPack "$Sample"

# Reference TYPE DRIVE_C: what another reader and another client make of the scripts.
Reference() {
  local script file folder
  for script in $(ScriptsOf "$Sample" "$1"); do
    file=$Sample/SQLScript/$1/$script
    { grep -oE "C:\\\\[^']*\\\\" "$file" || true; } | while read -r folder; do
      folder=${folder:3}
      mkdir -p "$2/${folder//\\//}"
    done
    iconv -f CP1252 -t UTF-8 "$file" | tr -d '\r' | awk '
      toupper($0) ~ /--TALULINEBYLINE/ {lines = 1; next}
      toupper($0) ~ /--TALUGO/ {lines = 0; next}
      {print} lines && NF {print "GO"}' |
      bsqldb -S "127.0.0.1:$Port" -U sa -P "$SQL_PASSWORD" -D master -q >"$Machine/out" 2>&1 ||
      Problems+=("$script: $(<"$Machine/out")")
  done
}

Test 'packcheck has nothing to say about the sample but what it accepts'
True 'the check' "$Root/build/release/tools/packcheck/packcheck" check "$Machine/media/Pack"

for Mode in Server Client; do
  for Type in Fresh Demo Upgrade; do
    Test "$Type, $Mode"
    InstallBelow "$Type $Mode" SalesDesk
    Data="$Machine/data of $Type $Mode" There=()
    ServerDrive=$DriveC
    [[ $Mode == Server ]] || ServerDrive=$Data/drive_c
    StartServer "$Data" "$ServerDrive"
    if [[ $Mode == Client || $Type == Upgrade ]]; then
      LoadScripts "$Sample" Fresh "$ServerDrive"
      There=(--database SalesDesk_Sales --database SalesDesk_Stock --login SalesDeskUser)
    fi
    Foretold "$Sample" "$Mode" "$Type" --special-folders "$(SpecialFolders)" "${There[@]}" \
      --exit LabelPrinter.exe=7
    if [[ $Mode == Server ]]; then
      Rows=$(Counts)
      StopServer
      Data="$Machine/reference of $Type"
      StartServer "$Data" "$Data/drive_c"
      [[ $Type != Upgrade ]] || Reference Fresh "$Data/drive_c"
      Reference "$Type" "$Data/drive_c"
      Is 'rows' "$(Counts)" "${Rows:-none}"
    fi
    StopServer
  done
done
