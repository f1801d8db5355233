"""Whether the built SalesDesk pack shows all that a pack can have. That what it names is there, and that its scripts
keep the rules, packcheck says in the end-to-end group plan.

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


class Pack(unittest.TestCase):
    def test_every_key_is_explained_to_pack_authors_and_known_to_packcheck(self):
        manual = re.findall("(?m)^### (.*)", (ROOT / "docs/pack-format.md").read_text())
        self.assertFalse(KEYS - set(re.split(", | and ", ", ".join(manual))))
        check = (ROOT / "tools/packcheck/CheckConfiguration.cpp").read_text()
        self.assertFalse([key for key in KEYS if f'"{key}"' not in check])

    def test_configuration_has_every_key_with_lines(self):
        text = (PACK / "AppCfg.txt").read_bytes().decode("cp1252")
        self.assertCountEqual(re.findall(r"(?m)^(\w+)\r\n{\r\n(?!})", text), KEYS)

    def test_every_kind_of_installation_has_hundreds_of_rows(self):
        for folder in SETS:
            scripts = "".join(path.read_text("cp1252") for path in (PACK / "SQLScript" / folder).iterdir())
            self.assertGreater(len(re.findall("(?m)^(INSERT|UPDATE)", scripts)), 200, folder)

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


if __name__ == "__main__":
    unittest.main()
