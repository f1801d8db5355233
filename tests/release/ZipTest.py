#!/usr/bin/env python3
"""The release's zip as its receiver meets it: ZipTest.py ZIP. Unpacks it below the current folder, checks
every file against the checksums, every link of the manuals, and the pack to start from with the
packcheck.exe beside it (under Wine). A stray file in the sources changes nothing."""

import hashlib
import pathlib
import re
import subprocess
import sys
import zipfile

root = pathlib.Path(__file__).resolve().parents[2]
clone = pathlib.Path("clone").resolve()
subprocess.run(["git", "clone", "-q", root, clone], check=True)
(clone / "build").symlink_to(root / "build")
(clone / "samples/Starter/Application/Thumbs.db").write_text("stray")
(clone / "samples/Starter/AppCfg.txt~").write_text("stray")
subprocess.run([sys.executable, "-B", root / "tools/release/MakeZip.py", clone, "."], check=True)
with zipfile.ZipFile(pathlib.Path(sys.argv[1]).name) as archive:
    strays = [name for name in archive.namelist() if name.endswith(("Thumbs.db", "~"))]
    assert not strays, f"not of the sources: {strays}"

with zipfile.ZipFile(sys.argv[1]) as archive:
    archive.extractall()
top = pathlib.Path(pathlib.Path(sys.argv[1]).stem)

sums = dict(line.split("  ", 1)[::-1] for line in (top / "SHA256SUMS").read_text("utf-8").splitlines())
files = {str(path.relative_to(top)) for path in top.rglob("*") if path.is_file()} - {"SHA256SUMS"}
assert files == set(sums), files ^ set(sums)
assert {"Pack/Setup.exe", "Pack/Application/Uninstall.exe"} <= files
assert b"\r\n\\Uninstall.exe,Programs," in (top / "Pack/AppCfg.txt").read_bytes()
for name in files:
    assert hashlib.sha256((top / name).read_bytes()).hexdigest() == sums[name], name

for manual in top.glob("*.html"):
    for link in re.findall(r'href="([^"]+)"', manual.read_text("utf-8")):
        page, _, anchor = link.partition("#")
        target = top / (page or manual.name)
        assert target.is_file(), f"{manual.name} leads to {link}, which is not there"
        assert not anchor or f'id="{anchor}"' in target.read_text("utf-8"), f"{manual.name}: {link}"

said = subprocess.run(["wine", str(top / "packcheck.exe"), "check", str(top / "Pack")],
                      check=False, capture_output=True, text=True)
assert (said.returncode, said.stdout.strip()) == (0, "0 errors, 0 warnings, 0 notes"), said
# What is taken out is missed.
(top / "Pack/SQLScript/Fresh/Create.sql").unlink()
assert subprocess.run(["wine", str(top / "packcheck.exe"), "check", str(top / "Pack")],
                      check=False, capture_output=True).returncode == 2
