# shellcheck shell=bash disable=SC2154,SC2034
# Packs made by chance that packcheck calls clean install as it foretells, byte for byte. RANDOM_PACKS of
# them (2), from number RANDOM_SEED (1) on.
Public='C:\users\Public\Desktop' Start='C:\ProgramData\Microsoft\Windows\Start Menu'
printf '%s\n' "$Public" "$Start" "$Start\\Programs" >"$Machine/special-folders"
packcheck=$Root/build/release/tools/packcheck/packcheck

Found=0
for ((Seed = ${RANDOM_SEED:-1}; Found < ${RANDOM_PACKS:-2}; ++Seed)); do
  Made="$Machine/packs/$Seed"
  mkdir -p "$Machine/packs"
  "$Root/build/release/tests/properties/random_packs" --seed "$Seed" --write "$Made" >"$Made.txt"
  # The add-on of such a pack is no program, what EXEC runs only a real server knows, and the place of the log
  # must be known.
  if ! "$packcheck" check "$Made" >/dev/null || [[ -d $Made/AddOns ]] || grep -q EXEC "$Made.txt" ||
    ! grep -A2 '^AppFolder' "$Made/AppCfg.txt" | grep -qx $'Shop\r'; then
    rm -rf "$Made"
    continue
  fi
  Found=$((Found + 1))
  Type=Fresh Mode=Server
  ((Seed % 3 != 1)) || Type=Demo
  # The server of a client that has a data source would have the product.
  ((Seed % 5 != 4)) || grep -q '^SystemDSN' "$Made/AppCfg.txt" || Mode=Client
  # What cannot be chosen is not tried.
  [[ -n $(ScriptsOf "$Made" "$Type") ]] || Type=
  Test "pack $Seed, ${Type:-what there is}, $Mode"
  PutPack "$Made"
  InstallBelow "Random $Seed" Shop
  StartServer "$Machine/data $Seed" "$Machine/wine/drive_c"
  Foretold "$Made" "$Mode" "${Type:-Fresh}" --special-folders "$Machine/special-folders"
  StopServer
done
