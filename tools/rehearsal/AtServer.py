#!/usr/bin/env python3
"""What a rehearsal asks of a SQL Server, as LOGIN with the password in SQL_PASSWORD:

  AtServer.py SERVER LOGIN reach                     whether it can be used
  AtServer.py SERVER LOGIN query DATABASE STATEMENT  the rows, a tab between columns
  AtServer.py SERVER LOGIN load PLAN [X=DIR...]      sends what this plan's scripts have, as the wizard would,
                                                     when there are the folders of its files on these drives
  AtServer.py SERVER LOGIN names                     its databases and logins, as JSON
  AtServer.py SERVER LOGIN begin PLAN...             the same, when nothing there is in the way of these plans
  AtServer.py SERVER LOGIN state BEFORE              what is there that was not before, with files and tables
  AtServer.py SERVER LOGIN drop BEFORE PLAN...       drops what these plans' scripts name and was not there before

Ends with 1 and a line that says why it could not be done.
"""

import json
import os
import signal
import sys
from pathlib import Path

from Odbc import LOGIN_FAILED, Connection, SqlError, beside, names, quoted, tables
from Planned import Plan, beginning


def literal(text):
    return "N'" + text.replace("'", "''") + "'"


def load(connection, plan, drives):
    for path in plan.files():
        letter, _, below = path.partition(":")
        folder = drives.get(letter.upper())
        if folder:
            Path(folder, *below.split("\\")[1:-1]).mkdir(parents=True, exist_ok=True)
    for statement in plan.build:
        try:
            connection.run(statement.text)
        except SqlError as error:
            sys.exit(f"the server refused {statement.place()}, {beginning(statement.text)}: {error}")


def begin(connection, plans):
    """Refuses names that exist, and tries to make every file before anything else does."""
    there = names(connection)
    planned = set().union(*(plan.names() for plan in plans))
    clash = [f"the {kind} {name}" for kind, found in (("database", there["databases"]), ("login", there["logins"]))
             for name in found if name.lower() in planned]
    if clash:
        sys.exit(f"{server} has {' and '.join(clash)} already, which the scripts name: nothing has been started")
    # What ends us in the middle would leave the probe there.
    for number in (signal.SIGINT, signal.SIGTERM, signal.SIGHUP):
        signal.signal(number, signal.SIG_IGN)
    probe = f"TaluRehearsal{os.getpid()}"
    for path in dict.fromkeys(path for plan in plans for path in plan.files()):
        try:
            connection.run(f"CREATE DATABASE {probe} ON (NAME = {probe}, FILENAME = {literal(path)})")
            connection.run(f"DROP DATABASE {probe}")
        except SqlError as error:
            left = " (of an earlier build that failed: delete it there)" if error.number == 5170 else ""
            sys.exit(f"{server} cannot make the file {path}{left}: {error}")
    return there


def drop(connection, before, plans):
    new = beside(names(connection), before)
    planned = set().union(*(plan.names() for plan in plans))
    dropped, left = [], []
    for kind in ("database", "login"):
        for name in new[kind + "s"]:
            if name.lower() not in planned:
                left.append(f"the {kind} {name} (new, but no script of the pack names it)")
                continue
            try:
                if kind == "database":
                    try:
                        connection.run(f"ALTER DATABASE {quoted(name)} SET SINGLE_USER WITH ROLLBACK IMMEDIATE")
                    except SqlError:
                        pass  # it is offline
                connection.run(f"DROP {kind} {quoted(name)}")
                dropped.append(f"{kind} {name}")
            except SqlError as error:
                left.append(f"the {kind} {name} ({error})")
    print(f"dropped at {server}: " + (", ".join(dropped) or "nothing, there was nothing new"))
    if left:
        sys.exit(f"left at {server}: " + ", ".join(left))


server, login, command, *arguments = sys.argv[1:]
try:
    with Connection(server, login, arguments[0] if command == "query" else "master") as connection:
        if command == "query":
            for row in connection.run(arguments[1]):
                print("\t".join("NULL" if value is None else value for value in row))
        elif command == "load":
            load(connection, Plan(arguments[0]), dict(drive.split("=", 1) for drive in arguments[1:]))
        elif command == "names":
            print(json.dumps(names(connection)))
        elif command == "begin":
            print(json.dumps(begin(connection, [Plan(path) for path in arguments])))
        elif command == "state":
            new = beside(names(connection), json.loads(Path(arguments[0]).read_text("utf-8")))
            print(json.dumps({"databases": [{"name": name, "tables": tables(server, login, name)} for name in new["databases"]],
                              "logins": new["logins"]}))
        elif command == "drop":
            drop(connection, json.loads(Path(arguments[0]).read_text("utf-8")), [Plan(path) for path in arguments[1:]])
except SqlError as error:
    if error.number == LOGIN_FAILED:
        sys.exit(f"{server} refuses the login {login}: {error.text}")
    left = ""
    if command == "drop":
        made = dict.fromkeys(name for path in arguments[1:] for name in Plan(path).made)
        left = f"; look there for {', '.join(made) or 'what the scripts make'}"
    sys.exit(f"{server} cannot be used: {error}{left}")
