#!/usr/bin/env python3
"""What streams.sh has to do with every byte.

  EveryByte.py make PACK    a pack with every byte, in its texts and as far as Windows allows it in names
  EveryByte.py lines FILE   whether the file has lines, each a JSON object in UTF-8 with a line end
"""

import json
import pathlib
import sys

EVERY = bytes(range(256))


def block(key, values):
    return key + b"\r\n{\r\n" + values + b"\r\n}\r\n"


def make(pack):
    (pack / "SQLScript" / "Fresh").mkdir(parents=True)
    (pack / "Application").mkdir()
    (pack / "AppCfg.txt").write_bytes(
        block(b"AppTitle", EVERY) + block(b"AppFolder", b"App") + block(b"DBFolder", b"Data")
        + block(b"FreshDBSript", b"f.sql\r\n" + EVERY) + block(b"SystemDSN", EVERY * 3)
        + block(b"AddOns", b"a\xff.bat\r\n\x81\xfe.exe") + EVERY)
    (pack / "SQLScript/Fresh/f.sql").write_bytes(b"--taluLineByLine\r\nPRINT '" + EVERY + b"',\r\n")
    (pack / "Application/\u20ac\u00fc.dll").write_bytes(EVERY)


def lines(file):
    *whole, rest = file.read_bytes().decode("utf-8").split("\n")
    assert whole and all(json.loads(line) for line in whole) and not rest, rest


{"make": make, "lines": lines}[sys.argv[1]](pathlib.Path(sys.argv[2]))
