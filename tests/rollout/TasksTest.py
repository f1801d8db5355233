"""Plays the tasks for Windows with modules that only write down what they are asked of the machine, and looks at what
that is, in which order, and what becomes of it when something fails: TasksTest.py ROLLOUT PLACE"""

import json
import os
import pathlib
import re
import subprocess
import sys

# Answers the first text of "answers" that the request contains as told there, everything else as done.
MODULE = """#!/usr/bin/python3
import json, pathlib, sys
from ansible.module_utils.basic import AnsibleModule, _load_params
here = pathlib.Path({here!r})
request = [{name!r}, {{key: value for key, value in _load_params().items() if not key.startswith("_ansible")}}]
with (here / "asked").open("a") as asked:
    asked.write(json.dumps(request) + "\\n")
answers = json.loads((here / "answers").read_text())
done = dict(changed=True, stdout="", stderr="", rc=0, files=[])
print(json.dumps(next((answer for text, answer in answers.items() if text in json.dumps(request)), done)))
sys.exit(0)
"""
MODULES = {"ansible": ["win_file", "win_copy", "win_command", "win_shell", "win_wait_for", "win_find", "win_stat"],
           "community": ["win_unzip", "win_scheduled_task"]}
FOLDER = r"C:\Windows\TaLuPack"

rollout, place = map(pathlib.Path, sys.argv[1:])
here = place / "windows"
for collection, names in MODULES.items():
    modules = here / "ansible_collections" / collection / "windows/plugins/modules"
    modules.mkdir(parents=True)
    for name in names:
        (modules / f"{name}.py").write_text(MODULE.format(here=str(here), name=name))
(here / "machines.ini").write_text(f"""[machines]
till ansible_connection=local ansible_python_interpreter={sys.executable} kind=windows desktop_user='TILLS\\Cashier'
[machines:vars]
server=SRV1
drive=/srv/packs/drive.exe
installed_in=/nowhere
""")


def play(answers, **variables):
    """What the machine is asked, what is printed, and the line of the summary."""
    (here / "asked").write_text("")
    (here / "answers").write_text(json.dumps(answers))
    result = subprocess.run(
        ["ansible-playbook", "-vvv", "--diff", "-i", "machines.ini", rollout / "rollout.yml", "-e",
         json.dumps({"pack": str(place / "pack"), **variables})],
        cwd=here, env={**os.environ, "PWD": str(here), "ANSIBLE_COLLECTIONS_PATH": str(here)},
        capture_output=True, text=True, check=False)
    requests = [json.loads(line) for line in (here / "asked").read_text().splitlines()]
    return requests, result.stdout, (here / "report/summary.txt").read_text().strip()


def same(what, found, expected):
    assert found == expected, f"{what}: {found} instead of {expected}"


LEFT = [["win_scheduled_task", {"name": "TaLuPack", "state": "absent"}], ["win_file", {"path": FOLDER, "state": "absent"}]]

asked, printed, summary = play({"Get-Content": {"rc": 0, "stdout": "the SECRET of an answer", "stderr": ""}})
assert summary == "till: installed", f"{summary}: {printed[-3000:]}"
# The folder comes first, where nobody else can make one, and is the administrators' before there is anything in it.
same("the beginning", asked[:2], [["win_file", {"path": FOLDER, "state": state}] for state in ("absent", "directory")])
same("the rights", asked[2][1]["_raw_params"],
     f"icacls {FOLDER} /inheritance:r /grant *S-1-5-32-544:(OI)(CI)F *S-1-5-18:(OI)(CI)F")
strays = [path for request in asked for path in re.findall(r"[A-Z]:\\\\[\w\\.]*", json.dumps(request))
          if not path.startswith(json.dumps(FOLDER)[1:-1])]
same("what lies elsewhere", set(strays), {r"C:\\Program"})  # where the product goes
task = next(request for name, request in asked if name == "win_scheduled_task")
same("how it runs", [task.get(key) for key in ("username", "logon_type", "run_level", "disallow_start_if_on_batteries",
                                               "stop_if_going_on_batteries")],
     [r"TILLS\Cashier", "interactive_token", "highest", False, False])
same("the times", [request["timeout"] for name, request in asked if name == "win_wait_for"], [60, 7200])
same("the end", asked[-2:], LEFT)
assert "SECRET" not in printed, "what drive said is in ansible's own log"
assert "SECRET" in (here / "report/till/drive.log").read_text(), "what drive said is not in the report"

# Each reason not to begin has its words.
question = next(request["_raw_params"] for name, request in asked if name == "win_shell")
for words in (r"'TILLS\Cashier' -replace '^.*[\\]'", "'nobody is logged on'", "is logged on, not $wanted",
              "'it runs on battery'"):
    assert words in question, f"{words} is not in: {question}"

# Whatever fails, it is said and all is taken away; a machine that is not fit gets nothing.
for answers, told in (
        ({"explorer.exe": {"stdout": "nobody is logged on\r\n"}}, "Refuse .*: nobody is logged on"),
        ({"icacls": {"failed": True, "msg": "denied"}}, "Keep everybody .*: denied"),
        ({"pack.zip": {"failed": True, "msg": "no room"}}, "Copy .*: One or more items failed"),
        ({"win_wait_for": {"failed": True, "msg": "timed out"}}, "Tell .*: the task of .* did not begin within a minute"),
        ({"Get-Content": {"rc": 1, "stdout": "", "stderr": "client.txt:3: no"}}, "client.txt:3: no")):
    asked, printed, summary = play(answers)
    assert re.fullmatch(f"till: FAILED: {told}", summary), f"{told}: {summary}"
    same(f"the end after {told}", asked[-2:], LEFT)
    copied = any(name == "win_copy" for name, _ in asked)
    same(f"copied, {told}", copied, not told.startswith(("Refuse", "Keep")))

# To take a product back no desktop is asked for, and no answers are played.
for there in (True, False):
    asked, printed, summary = play({"win_stat": {"stat": {"exists": there}},
                                    "Uninstall.exe": {"rc": 0, "stdout": "gone: 7", "stderr": ""}}, state="absent")
    same("the summary", summary, "till: absent")
    same("what is run", [request["argv"] for name, request in asked if request.get("argv")],
         [[r"/nowhere\Uninstall.exe", "run", "--pack", FOLDER + r"\Pack"]] if there else [])
    assert not any(name == "win_shell" or request.get("actions") for name, request in asked), asked
    same("the end", asked[-2:], LEFT)
asked, printed, summary = play({"win_stat": {"stat": {"exists": True}},
                                "Uninstall.exe": {"rc": 1, "stdout": "left: 1", "stderr": ""}}, state="absent")
same("the summary", summary, "till: FAILED: left: 1")
print("the tasks for Windows: as they should be")
