"""Checks the built SalesDesk pack against the rules that the set-up holds packs to.

    PackTest.py PACK-FOLDER
"""

import re
import sys
import unittest
from pathlib import Path

PACK = Path(sys.argv.pop(1))
ROOT = Path(__file__).parents[2]
SETS = {"Fresh": "FreshDBSript", "Demo": "DemoDBSript", "Upgrade": "UpgradeDBSript"}
# What the wizard reads.
KEYS = {*SETS.values(), *(key for source in (ROOT / "src").rglob("*.cpp")
                          for key in re.findall(r'GetCfg(?:Value|Count)\("(\w+)"', source.read_text()))}
MISSING_ON_PURPOSE = {"CardReader.exe"}


def lines_of(path):
    """The lines of a text that must end its lines with CR LF and nothing else."""
    text = path.read_bytes().decode("cp1252")
    if not text.endswith("\r\n") or re.search(r"(?<!\r)\n|\r(?!\n)", text):
        raise AssertionError(f"{path} has line ends other than CR LF")
    return text.split("\r\n")[:-1]


def configuration():
    """The blocks of AppCfg.txt: key -> value lines."""
    blocks, key, values = {}, None, None
    for line in lines_of(PACK / "AppCfg.txt"):
        if line == "{":
            values = blocks.setdefault(key, [])
        elif line == "}":
            values = None
        elif values is None:
            key = line
        else:
            values.append(line)
    return blocks


def host(path):
    """The host's path of a pack file written with backslashes."""
    return PACK.joinpath(*path.split("\\"))


def batches_of(script):
    """A script's statements as the server gets them; a script breaks no rule of its mode."""
    directive, *rest = lines_of(script)
    rest = [line.strip() for line in rest if line.strip()]
    if directive == "--taluLineByLine":
        return rest
    if directive != "--taluGO" or rest[-1] != "GO":
        raise AssertionError(f"{script} lacks its directive or its last GO")
    return [batch.strip() for batch in re.split(r"(?m)^GO$", "\n".join(rest))[:-1]]


class Pack(unittest.TestCase):
    def test_every_key_is_explained_to_pack_authors_and_known_to_packcheck(self):
        manual = re.findall("(?m)^### (.*)", (ROOT / "docs/pack-format.md").read_text())
        self.assertFalse(KEYS - set(re.split(", | and ", ", ".join(manual))))
        check = (ROOT / "tools/packcheck/CheckConfiguration.cpp").read_text()
        self.assertFalse([key for key in KEYS if f'"{key}"' not in check])

    def test_configuration_has_every_key_and_confuses_no_reader(self):
        blocks = configuration()
        self.assertCountEqual(blocks, KEYS)
        for key, values in blocks.items():
            self.assertTrue(values, key)
            for line in values:
                # A blank line, or the beginning of a key, would open the wrong block.
                self.assertTrue(line.strip())
                self.assertFalse([key for key in KEYS if key.startswith(line)], line)

    def test_what_the_configuration_names_is_there(self):
        blocks = configuration()
        named = [f"SQLScript\\{folder}\\{script}" for folder, key in SETS.items()
                 for script in blocks[key]]
        named += ["Application" + line.split(",")[0] for line in blocks["Shotcut"]]
        named += ["Application" + line for line in blocks["RegnLocation"]]
        named += ["Application" + line.split(",")[0].rpartition("\\")[0]
                  for line in blocks["WriteSettings"]]
        named += ["SpecialRegn\\" + line.split(",")[0] for line in blocks["SpecialRegn"]]
        named += ["AddOns\\" + line for line in blocks["AddOns"] if line not in MISSING_ON_PURPOSE]
        self.assertEqual([name for name in named if not host(name).exists()], [])
        self.assertFalse([name for name in MISSING_ON_PURPOSE if host("AddOns\\" + name).exists()])
        for key in SETS.values():
            self.assertEqual(len(blocks[key]), len(blocks["DBSript"]))

    def test_scripts_give_the_names_of_their_databases_and_logins(self):
        blocks = configuration()
        databases = blocks["DBSript"]
        for folder, key in SETS.items():
            created, logins, rows = [], [], 0
            for script in blocks[key]:
                for batch in batches_of(PACK / "SQLScript" / folder / script):
                    for name, files in re.findall(r"CREATE DATABASE (\w+) (.*)", batch, re.DOTALL):
                        created.append(name)
                        paths = re.findall(r"FILENAME = N'(C:\\OldData\\.*?)'", files)
                        self.assertEqual([path[-4:] for path in paths], [".mdf", ".ldf"])
                    logins += re.findall(r"CREATE LOGIN (\w+) WITH PASSWORD = N'([^']+)'", batch)
                    rows += batch.startswith(("INSERT", "UPDATE"))
                    # Everything after one of these words would be taken for a database's name.
                    if re.search("USE |ALTER DATABASE|DROP DATABASE", batch):
                        self.assertIn(batch, [f"USE {name}" for name in databases])
            self.assertGreater(rows, 200)
            if folder == "Upgrade":
                self.assertEqual((created, logins), ([], []))
                continue
            self.assertEqual(created, databases)
            for line in blocks["SystemDSN"]:
                driver, _, database, user, password = (part.strip() for part in line.split(","))
                self.assertEqual(driver, "SQL Server")
                self.assertIn(database, databases)
                self.assertIn((user, password), logins)

    def test_application_folder_holds_the_cases_it_is_there_to_show(self):
        files = [path.relative_to(PACK / "Application") for path in
                 (PACK / "Application").rglob("*") if path.is_file()]
        names = {path.name for path in files}
        self.assertGreater(len(files), 300)
        self.assertLessEqual({"SalesDesk.mdf", "SalesDesk.ldf", "Archive.MDF"}, names)
        self.assertLessEqual({"SALESGRID.OCX", "SalesPrint.dll"}, names)
        self.assertTrue([path for path in files if len(path.parts) > 3 and " " in str(path.parent)])
        self.assertTrue([path for path in files if not str(path).isascii()])
        for path in files:
            str(path).encode("cp1252")  # a name outside the code page could not be installed
            self.assertGreaterEqual(len(path.name), 4)

    def test_programs_and_pictures_are_what_their_names_say(self):
        begins = {".exe": b"MZ", ".dll": b"MZ", ".ocx": b"MZ", ".jpg": b"\xff\xd8\xff",
                  ".msi": b"\xd0\xcf\x11\xe0"}
        checked = 0
        for path in PACK.rglob("*"):
            begin = begins.get(path.suffix.lower())
            if begin:
                self.assertEqual(path.read_bytes()[:len(begin)], begin, path)
                checked += 1
        self.assertEqual(checked, 7)


if __name__ == "__main__":
    unittest.main()
