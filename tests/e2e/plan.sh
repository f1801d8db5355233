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
    Data="$Machine/data of $Type $Mode" There=()
    ServerDrive=$DriveC
    [[ $Mode == Server ]] || ServerDrive=$Data/drive_c
    StartServer "$Data" "$ServerDrive"
    if [[ $Mode == Client || $Type == Upgrade ]]; then
      LoadScripts "$Sample" Fresh "$ServerDrive"
      There=(--database SalesDesk_Sales --database SalesDesk_Stock --login SalesDeskUser)
    fi
    Foretold "$Sample" "$Mode" "$Type" --special-folders "$Machine/special-folders" "${There[@]}" \
      --exit LabelPrinter.exe=7
    StopServer
  done
done
