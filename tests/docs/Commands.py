#!/usr/bin/env python3
"""Runs the commands of all documents, or of the named: Commands.py PLACE [DOCUMENT...], in the tree's
root, called by tests/docs/run.

Commands are the lines of fences marked sh (run here), bat (run under Wine), and every `./...` or
`tools/...` in the text. A fence marked drive is a script for drive, named in its first line; one marked
cpp must stand in the tests as it is. Every fence has a mark, so that no command slips by.
"""

import os
import pathlib
import re
import shlex
import subprocess
import sys
import time

place = pathlib.Path(sys.argv[1]).resolve()
quoted = shlex.quote(str(place))  # for a shell
machine = pathlib.Path(os.environ["Machine"])
pack = machine / "media/Pack"
server = os.environ["Server"]
# A server that has nothing yet, and where its machine has to have a folder.
bare = os.environ["BareServer"]
data = shlex.quote(str(place / "bare/drive_c/TaluDemo/TA-LU/SalesDesk/Data"))

# What is run in place of a command that would take long, or that would run this test again.
INSTEAD = {
    "./test": "./test sample",
    "./test SUITE": "./test sample",
    "./test release": "./test sample",
    "./demo && ./test": "./test sample",
    "./test --repeat 10 --busy 4 drive": "./test --repeat 2 --busy 1 sample",
    "./bench": "./bench --quick",
    "./demo": f"./demo --out {quoted}/demo",
    "./demo --mode client": f"./demo --mode client --out {quoted}/demo-client",
    "./demo --pack DIR": f"./demo --mode client --pack samples/Starter --out {quoted}/demo-starter",
    "./demo --show": f"tests/docs/closing {quoted}/demo-show",
    "./demo --pack DIR --break TEXT": "./demo --help",  # tools/rehearse does it
    "./demo --server SRV1 --login sa --folder 'C:\\TaluDemo'":
        f"mkdir -p {data} && ./demo --server {bare} --login sa --folder 'C:\\TaluDemo' --out {quoted}/demo-server && "
        f"! ls {data}/*",
    "./test e2e --server SRV1 --login sa": "./test --help",
    "tools/rehearse DIR": f"mkdir -p {quoted}/packs && cp -r samples/Starter {quoted}/packs/ && "
                          f"tools/rehearse {quoted}/packs",
    "tools/lint": "tools/lint src/runtime tools/lint tools/rooms",
    "tools/mutate": "tools/mutate --list",
    "tools/mutate deploy": "tools/mutate --list deploy",
    "./release --twice": "./release --help",
    "ctest --preset native": "ctest --preset native -N",
    "fuzz/run 600 scripts": "fuzz/run 1 scripts",
    "tools/contact-sheet": "tools/contact-sheet --quick",
    "tools/fresh-machine": "tools/fresh-machine --help",
    "tools/fresh-machine bookworm": "tools/fresh-machine --help",
    "tools/fresh-machine trixie": "tools/fresh-machine --help",
    "tools/fresh-machine trixie ./test wineparts": "tools/fresh-machine --help",
    "ansible-playbook -i machines.ini rollout.yml -e pack=/srv/packs/SalesDesk":
        "cd samples/RollOut && ansible-playbook -i machines.ini rollout.yml --syntax-check",
}
# A whole ./test among the commands would come back to here.
assert "TALU_DOCUMENTS" not in os.environ, "the documents' commands run already"
os.environ["TALU_DOCUMENTS"] = "run"
# What a suite of ./test runs in earnest.
SUITES = {"tests/powerloss/run 20": '"$Root/tests/powerloss/run" 3'}
MARKS = ("sh", "bat", "drive", "cpp", "text", "files", "copies", "usage")


def documents():
    names = subprocess.run(["git", "ls-files", "*.md"], capture_output=True, text=True, check=True)
    return [name for name in names.stdout.split() if name in sys.argv[2:] or len(sys.argv) == 2]


def parts(name):
    """The fences of a document as (mark, lines), and its inline commands as ("sh", [command])."""
    mark, lines = None, []
    for line in pathlib.Path(name).read_text("utf-8").splitlines():
        fence = re.match(r"```(.*)", line)
        if fence and mark is None:
            mark, lines = fence[1], []
            assert mark in MARKS or "." in mark, f"{name}: a fence marked '{mark}'"
        elif fence:
            yield mark, lines
            mark = None
        elif mark is not None:
            lines.append(line)
        else:
            yield from (("sh", [code]) for code in re.findall(r"`((?:\./|tools/)[^`]*)`", line)
                        if os.access(code.split()[0], os.X_OK) and os.path.isfile(code.split()[0]))


ran = set()


def run(name, command, shown):
    if shown in ran:
        return
    ran.add(shown)
    begin = time.monotonic()
    done = subprocess.run(command, check=False, capture_output=True, text=True, errors="replace", timeout=600,
                          **({"cwd": pack} if command[0] == "wine" else {}))
    assert done.returncode == 0, f"{name}: '{shown}' ended with {done.returncode}:\n" + (
        done.stdout + done.stderr)[-2000:]
    print(f"{time.monotonic() - begin:5.1f} s  {name}: {shown}", flush=True)


done = set()
for name in documents():
    for mark, lines in parts(name):
        if mark == "drive":
            script = re.match(r"# ([\w-]+\.txt):", lines[0])
            assert script, f"{name}: a drive script whose first line does not name it: {lines[0]}"
            (pack / script[1]).write_text("\n".join(lines) + "\n", "utf-8")
        elif mark == "cpp":
            text = "\n".join(lines)
            assert any(text in path.read_text("utf-8") for path in pathlib.Path("tests").rglob("*.cpp")), \
                f"{name}: no test reads like\n{text}"

for name in documents():
    for mark, lines in parts(name):
        for line in lines if mark in ("sh", "bat") else []:
            command = re.sub(r"\s+#.*", "", line).strip()
            if not command or (mark, command) in done:
                continue
            done.add((mark, command))
            if command in SUITES:
                assert SUITES[command] in pathlib.Path("test").read_text("utf-8"), command
                continue
            if mark == "bat":
                here = command.replace("SRV1", server).replace("%COMPUTERNAME%", server)
                # In a file, as quotes do not come through a command line to a command line.
                (pack / "command.bat").write_text(f"@{here}\n@exit %ERRORLEVEL%\n", "utf-8", newline="\r\n")
                run(name, ["wine", "cmd", "/c", "command.bat"], here)
            else:
                here = INSTEAD.get(command, command)
                run(name, ["bash", "-c", here], here)
print(f"{len(done)} commands")
assert len(done) > (20 if len(sys.argv) == 2 else 0)
