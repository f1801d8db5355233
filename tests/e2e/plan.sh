# shellcheck shell=bash disable=SC2154,SC2034
# The sample in all six kinds of installation: what packcheck foretells is what the machine and the
# server then see, byte for byte, and the databases have the rows that another client makes of the scripts.
DriveC=$Machine/wine/drive_c
PutPack "$Sample"

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
      [[ $Type != Upgrade ]] || LoadScripts "$Sample" Fresh "$Data/drive_c"
      LoadScripts "$Sample" "$Type" "$Data/drive_c"
      Is 'rows' "$(Counts)" "${Rows:-none}"
    fi
    StopServer
  done
done
