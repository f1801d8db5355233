# shellcheck shell=bash disable=SC2154,SC2034
# What somebody could plant beside Setup.exe or read in what it leaves.
InstallBelow 'Program Files' SalesDesk
Setup=$Root/build/win32/src/platform/win32/Setup.exe
Planted=$Machine/wine/drive_c/Planted
StartServer "$Machine/server" "$Machine/wine/drive_c"

# Imports FILE: the libraries that it names in its import table.
Imports() { i686-w64-mingw32-objdump -p "$1" | awk '/DLL Name:/ {print tolower($3)}' | sort; }

Uninstall=$Root/build/win32/src/uninstall/Uninstall.exe
Drive=$Root/build/win32/tools/drive/drive.exe Packcheck=$Root/build/win32/tools/packcheck/packcheck.exe

Test 'the programs import from libraries that Windows never takes from the program'\''s folder'
# Windows has these loaded for good; the manifests bind COMCTL32 and GDI+ to the system's.
for Built in "$Setup" "$Uninstall"; do
  Is "imports of $Built" 'advapi32.dll comctl32.dll gdi32.dll kernel32.dll msvcrt.dll ole32.dll oleaut32.dll shell32.dll user32.dll' \
    "$(Imports "$Built" | xargs)"
  True "the manifest of $Built" grep -aq 'Microsoft.Windows.Common-Controls' "$Built"
done
Is "drive's imports" 'gdi32.dll gdiplus.dll kernel32.dll msvcrt.dll ole32.dll shell32.dll user32.dll' \
  "$(Imports "$Drive" | xargs)"
True "drive's manifest" grep -aq 'Microsoft.Windows.GdiPlus' "$Drive"
Is "packcheck's imports" 'kernel32.dll msvcrt.dll shell32.dll' "$(Imports "$Packcheck" | xargs)"

Test 'data is not executed, addresses move, overrun buffers end the program; rights and versions are told'
for Built in "$Setup" "$Uninstall" "$Drive" "$Packcheck"; do
  Header=$(i686-w64-mingw32-objdump -p "$Built")
  for Text in NX_COMPAT DYNAMIC_BASE TERMINAL_SERVICE_AWARE \
    'Entry 5 [0-9a-f]* 0*[1-9a-f][0-9a-f]* Base Relocation'; do
    True "$Text in $Built" grep -q "$Text" <<<"$Header"
  done
  # The wizard's own protector; the compiler's would ask the system for a random number.
  i686-w64-mingw32-objdump -d "$Built" >"$Machine/code"
  True "the protector in $Built" grep -q 'int  *[$]0x29' "$Machine/code"
  Is "another protector's random number in $Built" '' "$(grep -ao CryptGenRandom "$Built" || true)"
  Level=asInvoker
  [[ $Built != "$Setup" && $Built != "$Uninstall" ]] || Level=requireAdministrator
  True "the level of $Built" grep -aq "requestedExecutionLevel level=\"$Level\"" "$Built"
  Name=${Built##*/}
  True "the version of $Built" grep -qxF "$Name" <(strings -el "$Built")
done
for Library in src/libwizard.a src/platform/win32/libwin32platform.a; do
  i686-w64-mingw32-nm "$Root/build/win32/$Library" >"$Machine/names"
  True "the protector in $Library" grep -q 'U ___stack_chk_fail' "$Machine/names"
done

Test 'no library planted beside the program, in the current folder too, is loaded'
PutPack "$Sample"
rm -r "$PackDir/Application/Help"
Bait=$Root/build/win32/tests/e2e/bait.exe
cp "$Bait" "$PackDir/"
Is 'imports of the bait' "$(Imports "$Setup")" "$(Imports "$Bait")"
# What is in the process before the program's first statement is the loader's affair. Of that only the
# program's own imports are planted: Wine would take the others, which its own libraries forward to.
mapfile -t Before < <(wine "$Bait" | tr -d '\r' | tr '[:upper:]' '[:lower:]')
# What the program loads by name, what installers are bitten by, and whatever else the system has.
mapfile -t Bitten < <({
  printf '%s.dll\n' apphelp bcrypt crypt32 cryptbase cryptsp dwmapi iertutil msimg32 netapi32 ntmarta \
    profapi propsys secur32 setupapi srvcli textshaping userenv uxtheme version wtsapi32 nobodys
  grep -ohE '"[a-z0-9]+\.dll"' "$Root"/src/platform/win32/*.cpp | tr -d '"'
} | sort -u | grep -vxFf <(printf '%s\n' "${Before[@]}"))
mapfile -t Late < <({
  printf '%s\n' "${Bitten[@]}"
  cd "$Machine/wine/drive_c/windows/system32" && ls | tr '[:upper:]' '[:lower:]' |
    grep -E '\.(dll|ocx|drv|cpl|ax|acm)$'
} | sort -u | grep -vxFf <(printf '%s\n' "${Before[@]}"))
for Name in "${Late[@]}" $(Imports "$Setup"); do
  cp "$Root/build/win32/tests/e2e/planted.dll" "$PackDir/$Name"
done
mkdir "$Planted"
# Loaded: what was loaded since the last time.
Loaded() {
  ls "$Planted"
  rm -f "$Planted"/*
}
# Wine takes libraries of its own before any other of the name, unless told otherwise.
Overrides=$WINEDLLOVERRIDES
printf -v WINEDLLOVERRIDES '%s,' "${Late[@]}"
WINEDLLOVERRIDES="$Overrides;${WINEDLLOVERRIDES%,}=n,b"
cd "$PackDir" || exit
wine bait.exe "${Late[@]}" </dev/null >/dev/null || true
Is 'what a trusting program loads' "$(printf 'bait.exe %s\n' "${Late[@]}")" "$(Loaded)"
wine bait.exe wary "${Bitten[@]}" </dev/null >/dev/null || true
Is 'what a wary program loads' '' "$(Loaded)"
Play '@install Server Fresh; @finish'
Is 'what Setup.exe loads' '' "$(Loaded)"
cd "$Root" || exit
WINEDLLOVERRIDES=$Overrides

Test 'of programs planted beside it the system'\''s own is started; an add-on looks for libraries as usual'
SampleHost=$Host
InstallBelow Other
Pack 'AddOns=bait.exe nobodys.dll|Tool.msi'
mkdir "$PackDir/AddOns"
cp "$Bait" "$PackDir/AddOns/"
cp "$Root/build/win32/tests/e2e/planted.dll" "$PackDir/nobodys.dll"
for Name in regsvr32 msiexec; do cp "$Root/build/win32/tests/e2e/planted-program.exe" "$PackDir/$Name.exe"; done
touch "$PackDir"/{AddOns/Tool.msi,Application/Sub/Any.ocx}
Play '@install Client; @finish'
# Which msiexec is started is Windows' choice; the manuals say so.
Is 'what was started and loaded' $'bait.exe nobodys.dll\nmsiexec.exe msiexec.exe' "$(Loaded)"
True 'the log' grep -qF 'regsvr32 /s "C:\Other' "$Host/Ta-luErrLog.txt"
Host=$SampleHost

Test 'the password is where the formats put it, and nowhere else'
# The prefix's registry too; Wine writes it when the last program has ended.
timeout 60 wineserver -w || true
Is 'files' "$Host/Settings/Password.txt
$Host/Uninstall.dat" "$(grep -rlaF "$SQL_PASSWORD" "$Machine/wine" "$Machine/media" "$Machine/server" | sort)"
Is 'who can read them' 'drwx------' "$(stat -c %A "$Machine")"
Is 'records' "PsWord:$SQL_PASSWORD" "$(tr -d '\r' <"$Host/Uninstall.dat" | grep -F "$SQL_PASSWORD")"

Test 'the stand-in listens on this machine only'
Hex=$(printf %04X "$Port")
Is 'addresses' "0100007F:$Hex" "$(awk -v port=":$Hex" '$4 == "0A" && $2 ~ port "$" {print $2}' /proc/net/tcp{,6} | xargs)"
