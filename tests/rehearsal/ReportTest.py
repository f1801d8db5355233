#!/usr/bin/env python3
"""What Report.py tells of a rehearsal, and what Planned.py finds in a plan: ReportTest.py FOLDER-OF-THEM."""

import json
import os
import pathlib
import subprocess
import sys
import tempfile

tools = pathlib.Path(sys.argv[1])
sys.path.insert(0, str(tools))
from Planned import Plan, Statement, beginning, is_same  # pylint: disable=import-error,wrong-import-position

BACKUP = "IF  EXISTS (SELECT 1) BACKUP DATABASE A TO  DISK = N'C:\\A BackUp\\Talu_A_{}.bkp ' WITH NOFORMAT"
PLANNED = [BACKUP.format("7_3_2012_9_5"), ("a.sql", 2, "\r\nCREATE LOGIN B WITH PASSWORD = N'Pass-1'"),
           ("a.sql", 4, "\r\n-- rows\r\nMERGE T"), ("b.sql", 2, "DROP TABLE U")]
RECEIVED = [BACKUP.format("23_11_2026_22_1"), "\r\nCREATE LOGIN B WITH PASSWORD = '***'", "\r\n-- rows\r\nMERGE T",
            "DROP TABLE U"]
LOG = ("//\r\nBuilding Database Started....\r\n\r\n"
       "//\r\n//\r\n[FreeTDS][SQL Server]no T near 'Pass-1'\r\n\r\n-- rows\r\nMERGE T\r\n\r\n\r\n"
       "//\r\nDatabase creation not finished...\r\n\r\n")
PLANNED_WORDS = "statements: the 4 that packcheck plans, in order"
NO_T, EXISTS = "no T near 'Pass-1'", "Cannot create file 'C:\\A.mdf' because it already exists. Change the path."
UNKNOWN = "what became of the 3 batches is not known: the wizard did not come to the end of the build"
FATES = {"c": "carried", "k": "kept", "n": "noted", "r": "refused"}
# What comes of it: the fates, what of the third batch is noted, errors by batch, what more is received (or, with no
# fates, the wizard's log), options, what is there at the end; the status and the lines.
CASES = {
    "all is well": ("ccck", [], {}, [], [], {}, 0, [
        "3 batches of 2 scripts: 2 carried out, 1 kept, 0 refused", PLANNED_WORDS]),
    "some are noted": ("ccnn", ["MERGE", "TOP"], {}, [], [], {}, 0, [
        "3 batches of 2 scripts: 1 carried out, 2 noted, 0 refused", PLANNED_WORDS, "only noted: MERGE 1, TOP 1"]),
    "some are refused": ("ccrr", [], {2: (208, NO_T), 3: (5, "x")}, ["ROLLBACK"], [], {}, 0, [
        "3 batches of 2 scripts: 1 carried out, 2 refused", PLANNED_WORDS, "refused: a.sql, line 4: MERGE T",
        "  the server: 208, no T near '***'", "  and 1 more"]),
    "a file is there": ("cccr", [], {3: (5170, EXISTS)}, [], [], {}, 0, [
        "  C:\\A.mdf is there from an earlier build that failed: a database that is dropped while it is offline leaves "
        "its files. Delete it on the server's machine."]),
    "another statement": ("cccc", [], {}, None, [], {}, 1, [
        'statements: statement 4 is "DROP TABLE V" in place of "DROP TABLE U" (b.sql)']),
    "too many": ("cccc", [], {}, ["SELECT 1"], [], {}, 1, ['statements: 1 more than planned, first "SELECT 1"']),
    "the server goes away": ("ccx", [], {}, [], [], {}, 1, [
        "2 batches of 1 script: 1 carried out, 1 refused", "statements: 3 of the 4 that are planned",
        "refused: a.sql, line 4: MERGE T", "  the server: went away before it answered"]),
    "too few": ("ccc", [], {}, [], [], {}, 1, ["statements: 3 of the 4 that are planned"]),
    "a failed build leaves nothing": ("cccr", [], {3: (5, "x")}, [], ["--broken"], {}, 0, [
        "left of the build: no database, no login"]),
    "a failed build leaves something": ("cccr", [], {3: (5, "x")}, [], ["--broken"], {
        "databases": [{"name": "A"}], "logins": ["old", "B"]}, 1, ["left of the build: the database A, the login B"]),
    "another server": (None, [], {}, LOG, [], {}, 0, [
        "3 batches of 2 scripts: 2 accepted, 1 refused", "refused: a.sql, line 4: MERGE T",
        "  the server: no T near '***'"]),
    "another server, a build without end": (None, [], {}, LOG[:-60], [], {}, 1, [UNKNOWN]),
    "another server, no log": (None, [], {}, None, [], {}, 1, [UNKNOWN]),
}


def lines(path, records):
    path.write_text("".join(json.dumps(record) + "\n" for record in records), "utf-8")


def run(place, given):
    fates, noted, errors, more, options, state = given
    # As on the disks of Windows, whose names have any case.
    (place / "media/Pack/SqlScript/fresh/Old scripts").mkdir(parents=True)
    (place / "media/Pack/AppCfg.txt").write_text("")
    (place / "media/Pack/SqlScript/fresh/a.sql").write_text("PASSWORD = 'Pass-1'")
    (place / "wine/drive_c/A").mkdir(parents=True)
    if fates is None and more:
        (place / "wine/drive_c/A/Ta-luErrLog.txt").write_bytes(more.encode("cp1252"))
    events = [{"event": "print", "path": "C:\\A\\Uninstall.dat", "text": "AppFolder:C:\\A\r\n"}]
    for one in PLANNED:
        script = isinstance(one, tuple)
        events.append({"event": "sql", "text": one[2] if script else one,
                       **({"script": one[0], "line": one[1]} if script else {})})
    lines(place / "plan", events)
    there = {"databases": [], "logins": [], **state}
    (place / "state").write_text(json.dumps(there))
    (place / "before").write_text(json.dumps({"databases": [], "logins": ["old"]}))
    command = [sys.executable, "-B", tools / "Report.py", place, "--title", "T", "--plan", place / "plan", "--before",
               place / "before", "--state", place / "state", "--out", place, *options]
    if fates is not None:
        received = RECEIVED[:len(fates)] + (more or [])
        if more is None:
            received[-1] = "DROP TABLE V"
        journal = [{"event": "sql", "number": 0, "text": "before", "ok": True}]
        for at, text in enumerate(received):
            error = {"error": dict(zip(("number", "description"), errors[at]))} if at in errors else {}
            fate = {"fate": FATES[fates[at]]} if fates[at:at + 1] in FATES else {}
            if fates[at:at + 1] == "x":
                fate = {"ok": False, "ending": "cut"}
            journal.append({"event": "sql", "number": at + 1, "text": text, "ok": not error, **error, **fate,
                            **({"carried": False, "constructs": noted} if at == 2 and noted else {})})
        end = len(journal)
        lines(place / "journal", [*journal, journal[0]])
        command += ["--journal", place / "journal", "--lines", "1", str(end)]
    return subprocess.run(command, check=False, capture_output=True, text=True,
                          env={**os.environ, "SQL_PASSWORD": "Server-1"})


for what, (*given, status, wanted) in CASES.items():
    with tempfile.TemporaryDirectory() as folder:
        done = run(pathlib.Path(folder), given)
        assert done.returncode == status, f"{what}: {done}"
        said = done.stdout.splitlines()
        missing = [line for line in wanted if line not in said]
        assert not missing, f"{what}: {missing} not in\n{done.stdout}{done.stderr}"
        kept = pathlib.Path(folder, "rehearsal.txt").read_text("utf-8")
        assert "Pass-1" not in kept and wanted[0] in kept, f"{what}: {kept}"

# The names that a server may not have before; a name that a script only mentions is none of them.
plan = Plan(os.devnull)
plan.build = [Statement({"text": text}) for text in (
    "CREATE  DATABASE [A ]] b] ON (FILENAME = N'E:\\x''y.mdf')", "if 1=1 drop database if exists \"C\"", "USE D;SELECT E",
    "EXEC sp_addlogin @loginame = N'F', 'p'", "alter login G DISABLE", "CREATE TABLE H (Id INT)")]
assert plan.names() == {"a ] b", "c", "d", "f", "g"}, plan.names()
assert plan.files() == ["E:\\x'y.mdf"], plan.files()
assert beginning("\r\n-- x\r\n/***\n use\n***/ CREATE LOGIN a WITH PASSWORD = 'b'") == "CREATE LOGIN a WITH ..."
assert beginning("-- GO") == "a comment"
for received, planned, same in (("a'***'b", "aN'x''y'b", True), ("a'***'b", "a'x'c", False), ("a***", "a'x\ny", True),
                                ("a ''***''' + @b", "a N''' + @b", True), ("a ''***'' c", "a N''x'' d", False),
                                ("*" * 3000 + "'***';'***'", "*" * 3000 + "'x';'y'", True), ("*" * 3000, "*" * 2999, False),
                                ("_1_2_3_4_5.bkp", "_9_9_9_9_9.bkp", True), ("a", "b", False)):
    assert is_same(received, planned) is same, (received, planned)
