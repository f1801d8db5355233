# shellcheck shell=bash disable=SC2154,SC2034
# Machines of three code pages, with letters that their code page has in texts and ones that none of them has
# in the names of files and folders: what packcheck foretells happens, and nothing is lost.
Foreign='א 表 Ж 😀'

# Letters NUMBER LOCALE OWN: a case on a machine of this code page; OWN are letters that it has.
Letters() {
  local own=$3 locales=$Machine/locales
  CodePage=$1
  [[ $2 == C ]] || {
    mkdir -p "$locales"
    localedef -i "$2" -f UTF-8 "$locales/$2.UTF-8" || [[ -d $locales/$2.UTF-8 ]]
    export LOCPATH=$locales
  }
  MakeMachine "$Tests/e2e/letters-$CodePage"
  export LC_ALL=$2.UTF-8
  PackPath="D:\\Pack $Foreign" PackDir="$Machine/media/Pack $Foreign"
  printf 'C:\\users\\Public\\Desktop\n' >"$Machine/special-folders"
  Pack "AppTitle=$own" "AppFolder=$own" "DBFolder=Data $own" "FreshDBSript=$own.sql|Rows.sql" \
    "SystemDSN=SQL Server,Letters,Letters,sa,$SQL_PASSWORD" "Shotcut=\\One.txt,Desktop,$own" \
    "WriteSettings=\\Set $own.txt,$own=,SERVER" "FinalMsg=$own"
  mkdir -p "$PackDir/Application/A $Foreign" "$PackDir/Application/B"
  echo a >"$PackDir/Application/A $Foreign/$Foreign.txt"
  echo b >"$PackDir/Application/B/after.txt"
  echo own >"$PackDir/Application/$own.txt"
  Script "$own.sql" <<END
--taluGO
CREATE DATABASE [Letters] ON PRIMARY (NAME = N'Letters', FILENAME = N'C:\\Old\\Letters.mdf')
GO
CREATE DATABASE [$own] ON PRIMARY (NAME = N'$own', FILENAME = N'C:\\Old\\$own.mdf')
GO
USE Letters
GO
CREATE TABLE Words (Word nvarchar(40))
GO
END
  Script Rows.sql <<END
--taluLineByLine
USE Letters
INSERT INTO Words VALUES (N'$own')
END

  Test "code page $CodePage, Server"
  InstallBelow "Target $Foreign" "$own"
  StartServer "$Machine/server" "$Machine/wine/drive_c"
  Foretold "$PackDir" Server Fresh --special-folders "$Machine/special-folders"
  True 'a file below a folder with foreign letters' cmp "$PackDir/Application/A $Foreign/$Foreign.txt" \
    "$Host/A $Foreign/$Foreign.txt"
  True 'a file below the folder after it' test -f "$Host/B/after.txt"
  True 'the name in the configuration' test -f "$Host/$own.txt"
  Is 'the row' "$own" "$(Query Letters 'SELECT Word FROM Words')"

  Test "code page $CodePage, Client"
  InstallBelow "Client $Foreign" "$own"
  Foretold "$PackDir" Client Fresh --special-folders "$Machine/special-folders" \
    --database Letters --database "$own"
  StopServer
}

# The second bytes of the first two are a backslash and a bracket.
Letters 932 ja_JP 'ソ表データ'
Letters 1251 ru_RU 'Данные'
Letters 1252 C 'Größe é'
