#!/usr/bin/env python3
"""What a server was told, and what is in a registry.

  Texts.py statements JOURNAL       what the server was told, or what a plan foretells, one statement a
                                    line, " / " for a line break, without the passwords of logins
  Texts.py registry FILE...         each key of Wine's registry, and each value with its key, one a line,
                                    without what Wine notes of its own devices at each start
"""

import json
import pathlib
import re
import sys


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


if sys.argv[1] == "registry":
    for name in sys.argv[2:]:
        registry(name)
else:
    statements(sys.argv[2])
