"""Writes the SalesDesk pack's texts: AppCfg.txt, the SQL scripts and the application's small files.

Everything is written in the Windows code page with CR LF line ends, whatever the sources have.
"""

import argparse
import shutil
from pathlib import Path

from ApplicationFiles import application_files
from ScriptRows import base_rows, demo_rows, upgrade_rows

SOURCES = Path(__file__).parent


def write_text(path, text):
    """Writes a text as Windows-1252 with CR LF; makes the folders on the way."""
    path.parent.mkdir(parents=True, exist_ok=True)
    path.write_bytes("\r\n".join(text.splitlines() + [""]).encode("cp1252"))


def line_script(rows):
    """A script in which each line is one statement."""
    return "\n".join(["--taluLineByLine", *rows])


def make_pack(pack):
    """Writes the texts of the pack, from an empty folder, so that nothing of an earlier one stays."""
    if pack.exists():
        shutil.rmtree(pack)
    create = (SOURCES / "sql/CreateDatabases.sql").read_text(encoding="utf-8")
    upgrade = (SOURCES / "sql/UpgradeTables.sql").read_text(encoding="utf-8")
    texts = {
        "AppCfg.txt": (SOURCES / "AppCfg.txt").read_text(encoding="utf-8"),
        "packcheck.ignore": (SOURCES / "packcheck.ignore").read_text(encoding="utf-8"),
        "SQLScript/Fresh/CreateDatabases.sql": create,
        "SQLScript/Fresh/BaseRows.sql": line_script(base_rows()),
        "SQLScript/Demo/CreateDatabases.sql": create,
        "SQLScript/Demo/DemoRows.sql": line_script(demo_rows()),
        "SQLScript/Upgrade/UpgradeTables.sql": upgrade,
        "SQLScript/Upgrade/UpgradeRows.sql": line_script(upgrade_rows()),
    }
    for name, text in texts.items():
        write_text(pack / name, text)
    for name, text in application_files():
        write_text(pack / "Application" / name, text)


if __name__ == "__main__":
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("pack", type=Path, help="the folder to write; emptied first")
    make_pack(parser.parse_args().pack)
