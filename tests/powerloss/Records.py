#!/usr/bin/env python3
"""What tests/powerloss/run has to do with scripts, logs and records.

  Records.py repeatable SCRIPT           makes the sample's script one that can be run twice on a server
  Records.py last RECORD                 prints the last installation's part of a record
  Records.py check MODE WHOLE LOG RECORD WHOLE-RECORD...
                                         whether log and record hold whole records, as run describes it; prints how
                                         many entries the log has
  Records.py phases MODE WRITES FOLDER   prints the phases of an installation that KillAt.py has watched
"""

import json
import pathlib
import sys

END = b"\r\n\r\n"


def repeatable(script):
    drops = "".join(
        f"IF EXISTS (SELECT name FROM sys.{view} WHERE name = N'{name}') DROP {kind} {name}\r\nGO\r\n"
        for kind, view, name in (("DATABASE", "databases", "SalesDesk_Sales"),
                                 ("DATABASE", "databases", "SalesDesk_Stock"),
                                 ("LOGIN", "server_principals", "SalesDeskUser")))
    text = pathlib.Path(script).read_bytes().decode("cp1252")
    directive = "--taluGO\r\n"
    assert text.startswith(directive)
    pathlib.Path(script).write_bytes((directive + drops + text[len(directive):]).encode("cp1252"))


def part(record):
    return record[record.rindex(b"AppFolder:"):]


def last(record):
    sys.stdout.buffer.write(part(pathlib.Path(record).read_bytes()))


def check(mode, whole, log_file, *records):
    # The first entry makes the log.
    log = pathlib.Path(log_file).read_bytes() if pathlib.Path(log_file).exists() else b""
    record, *whole_records = (pathlib.Path(name).read_bytes() for name in records)
    assert not log or log.startswith(b"//\r\n") and log.endswith(END), log[-200:]
    assert record.endswith(END), record[-200:]
    found, wanted = ([entry for entry in text.split(END)[:-1] if b"AppFolderBkp" not in entry]
                     for text in (log, pathlib.Path(mode + ".log").read_bytes()))
    assert found == wanted[:len(found)], "the log goes another way: " + str(
        [pair for pair in zip(found, wanted) if pair[0] != pair[1]][:1])
    assert not whole or len(found) == len(wanted), "the log is not whole"
    assert (pathlib.Path(mode + ".dat").read_bytes().startswith(part(record))
            or part(record) in whole_records), part(record)
    print(len(found), end="")


def phases(mode, writes, folder):
    marks = ["", "Building Database Started", "DSN creation started", "Started Copying files",
             "File Registration started", "Special Registration started", "Creating Shotcuts",
             "Writing Settings started", "Execution of AddOn packs started", "Final Message started"]
    written, phase, calls = {}, "", {"": 0}
    for line in pathlib.Path(writes).read_text("utf-8").splitlines():
        since, name, text = line.split(" ", 2)
        text = json.loads(text)
        assert text.endswith("\r\n\r\n") and text.count("\r\n\r\n") == 1, f"no whole record: {text!r}"
        written[name] = written.get(name, b"") + text.encode("cp1252")
        calls[phase] += int(since)
        phase = next((mark for mark in marks if mark and mark in text), phase)
        calls.setdefault(phase, 0)
    for name, text in written.items():
        assert (pathlib.Path(folder) / name).read_bytes().endswith(text), f"{name} was not written by these calls"
    assert len(written) == 2 and list(calls) == marks[:1] + marks[1 if mode == "server" else 2:], calls
    for mark, end in zip(calls, [*list(calls)[1:], ""]):
        print(mode, mark, end, calls[mark], sep="|")


{"repeatable": repeatable, "last": last, "check": check, "phases": phases}[sys.argv[1]](*sys.argv[2:])
