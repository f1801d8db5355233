#!/usr/bin/env python3
"""What an installation must have written, and what a server was told.

  Texts.py log FILE < ENTRIES       the log holds exactly these entries, one a line
  Texts.py record FILE < RECORDS    the same for the uninstall record
  Texts.py statements JOURNAL       what the server was told, or what a plan foretells, one statement a
                                    line, without the passwords of logins
  Texts.py registry FILE...         each key of Wine's registry, and each value with its key, one a line,
                                    without what Wine notes of its own devices at each start

" / " stands for a line break inside an entry, "*" for any text in a line. "error: TEXT" is the entry of
a trapped error, "error: TEXT @BATCH" that of one in a build. A difference is shown line by line and
ends with status 1.
"""

import difflib
import json
import pathlib
import re
import sys


def written(path, entries, before):
    """Compares a file with its entries, each of which has `before` in front, and a line break and an
    empty line behind."""
    expected = ""
    for entry in entries:
        if entry.startswith("error: "):
            entry = f"// / {entry[7:].replace(' @', ' / ')} / "
        expected += before + entry.replace(" / ", "\r\n") + "\r\n\r\n"
    actual = pathlib.Path(path).read_bytes().decode("cp1252")
    pattern = re.escape(expected).replace(r"\*", "[^\r\n]*")
    if re.fullmatch(pattern, actual):
        return
    sides = [[repr(line)[1:-1] for line in text.splitlines(True)] for text in (expected, actual)]
    print("\n".join(list(difflib.unified_diff(*sides, "expected", "written", "", "", 1, ""))[:30]))
    sys.exit(1)


def statements(journal):
    for line in pathlib.Path(journal).read_text("utf-8").splitlines():
        event = json.loads(line)
        if event["event"] == "sql":
            text = re.sub(r"(\bPASSWORD\s*=\s*)N?'[^']*'", r"\1'***'", event["text"], flags=re.IGNORECASE)
            print(re.sub(r"\s*[\r\n]+\s*", " / ", text.strip("\r\n")))


def registry(path):
    text = pathlib.Path(path).read_text("cp1252").replace("\\\n", "")
    for block in text.split("\n\n"):
        head, *values = block.splitlines() or [""]
        key = re.match(r"\[(.*)\]", head)
        if not key or re.match(r"System\\\\CurrentControlSet\\\\(Enum|Control\\\\(Class|DeviceClasses|Video))", key[1], re.I):
            continue
        print(f"{pathlib.Path(path).stem} [{key[1]}]")
        for value in values:
            if not value.startswith("#"):
                print(f"{pathlib.Path(path).stem} {key[1]} {value}")


command = sys.argv[1]
if command in ("log", "record"):
    written(sys.argv[2], sys.stdin.read().splitlines(), "//\r\n" if command == "log" else "")
elif command == "registry":
    for name in sys.argv[2:]:
        registry(name)
else:
    statements(sys.argv[2])
