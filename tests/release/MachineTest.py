#!/usr/bin/env python3
"""check-this-machine of the release, under Wine with the stand-in server: MachineTest.py ZIP DRIVE_C PORT.
With a double click it passes, over what one that was broken off has left; a Setup.exe that leaves a file out
turns it red; where something of the sample is there before, it touches nothing. Each time the machine and the
server are afterwards as they were."""

import os
import pathlib
import re
import shutil
import subprocess
import sys
import zipfile

drive, port = pathlib.Path(sys.argv[2]), sys.argv[3]
password = os.environ["SQL_PASSWORD"]
# cmd ends a command at an ampersand, a block at a parenthesis, where they are not in quotes.
place = pathlib.Path("check (a & b)")
with zipfile.ZipFile(sys.argv[1]) as archive:
    archive.extractall(place)
top = next(place.iterdir())
root = drive / "TaLuCheck"


def query(statement):
    return subprocess.run(["tsql", "-H", "127.0.0.1", "-p", port, "-U", "sa", "-P", password, "-o", "fhq"],
                          input=f"{statement}\ngo\n", check=True, capture_output=True, text=True).stdout.split()


def registry():
    """The keys and values that tell of TA-LU or of the sample."""
    subprocess.run(["wineserver", "-w"], check=True)
    for name in ("user.reg", "system.reg"):
        key = ""
        for line in (drive.parent / name).read_text("utf-8", "replace").splitlines():
            if line.startswith("["):
                key = line = line.rsplit("]", 1)[0]
            if re.search("SalesDesk|TA-?LU|Elsewhere|5C0E7A10", line, re.IGNORECASE):
                yield name, key, line


def state():
    """What is on the server, the files of C: but for what Windows keeps for itself, and the registry."""
    paths = {str(path.relative_to(drive)) for path in drive.rglob("*")}
    return (set(query("SELECT name FROM sys.databases") + query("SELECT name FROM sys.server_principals")),
            {path for path in paths if not path.lower().startswith(("windows/installer", "windows/temp"))},
            set(registry()))


def check(*arguments, answers=()):
    """Runs the command; each of the answers is given when it is asked for. Returns its status, what it showed
    and the report."""
    with subprocess.Popen(["wine", "cmd", "/c", "check-this-machine.cmd", *arguments], cwd=top,
                          stdin=subprocess.PIPE, stdout=subprocess.PIPE, stderr=subprocess.STDOUT) as command:
        shown = b""
        for answer in answers:
            while not shown.endswith(b"): "):
                byte = command.stdout.read(1)
                assert byte and b"Press any key" not in shown, shown
                shown += byte
            command.stdin.write(f"{answer}\r\n".encode())
            command.stdin.flush()
            shown += b"\n"
        shown = (shown + command.communicate()[0]).decode("utf-8", "replace")
    told = (top / "check-this-machine.txt").read_text("utf-8", "replace")
    print(shown, told, flush=True)
    assert password not in told + shown
    return command.returncode, shown, told


def same(before):
    after = state()
    assert after == before, [one ^ other for one, other in zip(before, after)]


# The folder that an earlier installation of another product noted.
subprocess.run(["wine", "reg", "add", r"HKCU\Software\TA-LU\Application", "/ve", "/d", r"C:\Elsewhere", "/f"],
               check=True)
clean = state()

# A check with the server that was broken off.
(root / "Server").mkdir(parents=True)
query("CREATE LOGIN SalesDeskUser WITH PASSWORD = N'Desk-2012-Stock'")
left = state()
status, shown, told = check("--client")
assert status == 1 and "a check with a SQL Server was broken off" in told, status
same(left)

status, shown, told = check(answers=(f"127.0.0.1,{port}", "sa"))
assert status == 0 and told.endswith("all passed\n") and "Press any key" in shown, status
for passed in ("the parts that touch Windows", "fresh client: log, record, files and shortcuts as planned",
               "upgrade server: log, record, files and shortcuts as planned",
               "failing server: the build is rolled back"):
    assert f"passed: {passed}\n" in told, passed
same(clean)

query("CREATE LOGIN SalesDeskUser WITH PASSWORD = N'Desk-2012-Stock'")
left = state()
status, shown, told = check("--server", f"127.0.0.1,{port}", "--user", "sa")
assert status == 1 and "is here before: there is SalesDeskUser" in told and "passed: " not in told, status
same(left)
query("DROP LOGIN SalesDeskUser")

# The wizard leaves out what ends in .ldf: let it be another ending.
setup = top / "Pack/Setup.exe"
program = setup.read_bytes()
assert program.count(b"\0.ldf\0") == 1
setup.write_bytes(program.replace(b"\0.ldf\0", b"\0.OCX\0"))
status, shown, told = check("--client")
assert status == 1, status
for wrong in ("fresh client: log, record, files and shortcuts as planned: it ended with 1",
              "fresh client: the components are registered: no key for SALESGRID"):
    assert f"FAILED: {wrong}\n" in told, wrong
assert r"C:\TaLuCheck\Client\TA-LU\SalesDesk\Components\SALESGRID.OCX is missing" in told
assert "passed: everything is removed\n" in told
same(clean)

# What a double click in the view of a zip unpacks.
shutil.rmtree(top / "Check")
status, shown, told = check()
assert status == 1 and "Unpack the whole zip" in shown, status
