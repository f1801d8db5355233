#!/usr/bin/env python3
"""Tells what became of the batches of a rehearsal: in a few lines, and whole in DIR/rehearsal.txt (and .json).

The stand-in's journal holds what it received, its report what it did with each; of another server there is only
what the wizard logged. Ends with 1 when what the server received is not what was planned or, with --broken, when
something is left of the build.
"""

import argparse
import json
import re
import sys
from collections import Counter
from pathlib import Path

from Passwords import Mask
from Planned import SECRET, Plan, beginning, is_same

CARRIED, KEPT, NOTED, ACCEPTED, REFUSED = "carried out", "kept", "noted", "accepted", "refused"
# As the stand-in's journal calls them.
FATES = {"carried": CARRIED, "kept": KEPT, "noted": NOTED, "accepted": ACCEPTED, "refused": REFUSED}
EXISTS = re.compile(r"file '?(.+?)'? because it already exists")
# How an answer that did not come to its end, ended.
ENDINGS = {"cut": "went away before it answered", "cancelled": "was told to stop"}
# A batch without these can be made to fail after the databases and logins have been made. (Without its COMMIT a
# transaction stays open, and in one no database can be taken back.)
MAKES = re.compile(r"\bCREATE\s+(DATABASE|LOGIN)\b|\A\s*(USE|COMMIT|ROLLBACK|BEGIN\s+TRAN\w*)\b", re.I)
LONGEST = 20000  # bytes of a server's words
# In the wizard's log.
ENDED = re.compile(rb"//\r\n(Database creation (completed successfully|not finished)|Script format is not correct)\.\.\.")
SHOWN = 8  # constructs


class Batch:
    """A batch of a script: its statement, its fate, what of it was only noted, the server's words."""

    def __init__(self, statement, fate, words="", constructs=()):
        self.statement, self.fate, self.words, self.constructs = statement, fate, words, constructs

    def line(self):
        said = "; ".join(filter(None, (", ".join(self.constructs), self.words)))
        return f"{self.statement.place()}: {beginning(self.statement.text)}" + (f"\n      {said}" if said else "")


def from_journal(plan, events, broken):
    """The batches of the scripts, and in words how what was received differs from the plan, if it does. What the
    wizard takes back is in the plan of a build that is to fail only."""
    batches = []
    for at, (event, planned) in enumerate(zip(events, plan.statements)):
        if not is_same(event["text"], planned.text):
            return batches, f"statement {at + 1} is \"{beginning(event['text'])}\" in place of " \
                            f"\"{beginning(planned.text)}\" ({planned.script or 'the wizard itself'})"
        if not planned.script:
            continue
        error = event.get("error")
        words = f"{error['number']}, {error['description']}" if error else ENDINGS.get(event.get("ending"), "")
        fate = FATES[event.get("fate", "carried" if event["ok"] else "refused")]
        batches.append(Batch(planned, fate, words, event.get("constructs", ())))
    surplus = len(events) - len(plan.statements)
    if surplus < 0:
        return batches, f"{len(events)} of the {len(plan.statements)} that are planned"
    if surplus and (broken or all(batch.fate != REFUSED for batch in batches)):
        return batches, f"{surplus} more than planned, first \"{beginning(events[-surplus]['text'])}\""
    return batches, ""


def from_log(plan, log):
    """The same by the wizard's log: what has no error there was accepted."""
    places = {}
    for at, statement in enumerate(plan.build):
        places.setdefault(statement.text.encode("cp1252", "replace"), []).append(at)
    words = {}
    for entry in re.split(rb"(?:\A|\r\n\r\n)//\r\n(?!\r\n)", log):
        if not entry.startswith(b"//\r\n"):
            continue
        body, end, found = entry[4:].removesuffix(b"\r\n"), 0, None
        while not found and (end := body.find(b"\r\n", end + 1, LONGEST)) >= 0:  # what the server says may have lines
            found = places.get(body[end + 2:])
        if found:  # the next with this text
            at = found.pop(0) if len(found) > 1 else found[0]
            words[at] = re.sub(r"\A(\[[^\]]*\])+", "", body[:end].decode("cp1252", "replace"))
    return [Batch(statement, REFUSED if at in words else ACCEPTED, words.get(at, ""))
            for at, statement in enumerate(plan.build)]


def counted(batches):
    fates = Counter(batch.fate for batch in batches)
    scripts = len({batch.statement.script for batch in batches})
    return f"{len(batches)} batches of {scripts} script{'s' * (scripts != 1)}: " + ", ".join(
        f"{fates[fate]} {fate}" for fate in FATES.values() if fates[fate] or fate == REFUSED)


def refusal(batches):
    """The first refused one, and how many there are besides."""
    refused = [batch for batch in batches if batch.fate == REFUSED]
    if not refused:
        return []
    first = refused[0]
    lines = [f"refused: {first.statement.place()}: {beginning(first.statement.text)}", f"  the server: {first.words}"]
    there = EXISTS.search(first.words)
    if there:
        lines.append(f"  {there[1]} is there from an earlier build that failed: a database that is dropped while it is "
                     "offline leaves its files. Delete it on the server's machine.")
    if len(refused) > 1:
        lines.append(f"  and {len(refused) - 1} more")
    return lines


def contents(state):
    """The databases with their files and tables, and the logins, a line each."""
    for database in state.get("databases", ()):
        yield f"database {database['name']}" + "".join(f", {path}" for path in database.get("files", ()))
        for table in database.get("tables", ()):
            yield f"    {table['rows']:>9} rows  {table['name']}"
        for kind, number in database.get("kept", {}).items():
            yield f"    {number:>9} kept  {kind}"
        for name in database.get("unknown", ()):
            yield f"      unknown       {name}"
    for login in state.get("logins", ()):
        yield f"login {login}"


def left_over(state, before):
    """The databases and logins that are there and were not before."""
    there = [("database", database["name"]) for database in state["databases"]]
    there += [("login", name) for name in state["logins"]]
    return [f"the {kind} {name}" for kind, name in there if name not in before[kind + "s"]]


def arguments():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("machine", type=Path, help="as tools/common.sh makes them")
    parser.add_argument("--title", required=True)
    parser.add_argument("--plan", required=True, help="what `packcheck plan --json` said")
    parser.add_argument("--before", required=True, type=Path, help="what `AtServer.py names` said before")
    parser.add_argument("--state", type=Path, help="the stand-in's report, or `AtServer.py state`")
    parser.add_argument("--journal", type=Path, help="the stand-in's")
    parser.add_argument("--lines", type=int, nargs=2, default=(0, None), help="how many it had before and behind")
    parser.add_argument("--out", required=True, type=Path)
    parser.add_argument("--seconds", default="")
    parser.add_argument("--broken", action="store_true", help="the build was made to fail")
    parser.add_argument("--unplanned", action="store_true", help="the operator did something else than planned")
    return parser.parse_args()


def main():
    given = arguments()
    plan = Plan(given.plan)
    state = json.loads(given.state.read_text("utf-8")) if given.state else {}
    before = json.loads(given.before.read_text("utf-8"))
    differs, left = "", []
    if given.journal:
        lines = given.journal.read_text("utf-8").splitlines()[slice(*given.lines)]
        events = [event for event in map(json.loads, lines) if event["event"] == "sql"]
        batches, differs = from_journal(plan, events, given.broken)
    else:
        log = given.machine / "wine/drive_c" / plan.app[3:].replace("\\", "/") / "Ta-luErrLog.txt"
        said = log.read_bytes() if log.exists() else b""
        batches = from_log(plan, said) if ENDED.search(said) else []
        if len(batches) < len(plan.build):
            differs = (f"what became of the {len(plan.build)} batches is not known: "
                       "the wizard did not come to the end of the build")
    hide = Mask(given.machine / "media/Pack").hide

    short = [counted(batches) if given.journal or not differs else differs]
    if given.journal and not given.unplanned:
        short.append("statements: " + (differs or f"the {len(plan.statements)} that packcheck plans, in order"))
    noted = Counter(construct for batch in batches for construct in batch.constructs)
    if noted:
        more = f" and {len(noted) - SHOWN} more" if len(noted) > SHOWN else ""
        short.append("only noted: " + ", ".join(f"{name} {times}" for name, times in noted.most_common(SHOWN)) + more)
    if given.broken:
        left = left_over(state, before)
        short.append("left of the build: " + (", ".join(left) or "no database, no login"))
    else:
        short += refusal(batches)

    text = [given.title, "", *short]
    for fate in (REFUSED, NOTED, KEPT):
        these = [batch.line() for batch in batches if batch.fate == fate]
        text += ["", f"{fate}: {len(these)}"] + ["  " + line for line in these] if these else []
    text += ["", "noted, by construct:"] + [f"{times:>6}  {name}" for name, times in noted.most_common()] if noted else []
    text += ["", *contents(state)]
    (given.out / "rehearsal.txt").write_text(hide("\n".join([*text, ""])), "utf-8")
    fates = Counter(batch.fate for batch in batches)
    plain = [text.strip() for text in (batch.statement.text for batch in batches)
             if not MAKES.search(text) and not SECRET.search(text)]  # it goes to a command line
    (given.out / "rehearsal.json").write_text(json.dumps(
        {"batches": len(batches), **{fate: fates[fate] for fate in FATES.values()}, "constructs": noted,
         "planned": not differs, "left": left, "seconds": given.seconds, "last": plain[-1][:100] if plain else ""}), "utf-8")
    print(hide("\n".join(short)))
    print(f"all of it: {given.out / 'rehearsal.txt'}")
    sys.exit(bool(left or (differs and not given.unplanned)))


main()
