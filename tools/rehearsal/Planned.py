"""What `packcheck plan --json` foretells of an installation: statements with their places, files and names."""

import json
import re

# The minute of a backup is in its file's name.
STAMP = re.compile(r"(?:_\d+){5}\.bkp")
FILE = re.compile(r"\bFILENAME\s*=\s*N?'([A-Za-z]:\\(?:[^']|'')+)'", re.I)
NAME = r"""(?:\[(?P<{0}b>(?:[^\]]|\]\])+)\]|"(?P<{0}q>(?:[^"]|"")+)"|(?P<{0}w>[\w@#$]+))"""
NAMED = re.compile(
    r"\b(?:(?:CREATE|ALTER|DROP|RESTORE|BACKUP)\s+(?:DATABASE|LOGIN)\s+(?:IF\s+EXISTS\s+)?|USE\s+)" + NAME.format("s") +
    r"|\bsp_(?:addlogin|droplogin|grantlogin|attach_db|attach_single_file_db|detach_db|renamedb)\s+"
    r"(?:@\w+\s*=\s*)?N?'(?P<literal>(?:[^']|'')+)'", re.I)
COMMENTS = re.compile(r"\A(?:\s+|--[^\n]*(?:\n|\Z)|/\*.*?(?:\*/|\Z))*", re.S)
# What follows one of these in a line may be a password.
SECRET = re.compile(r"(?i)(?:\bpassword\b|\bsp_(?:addlogin|password|setapprole)\b|\bpwd\s*=).*", re.S)


class Statement:
    """A batch that the wizard sends; the script and the line where it begins, unless it is the wizard's own."""

    def __init__(self, event):
        self.text, self.script, self.line = event["text"], event.get("script"), event.get("line")

    def place(self):
        return f"{self.script}, line {self.line}"


def beginning(text):
    """The first line that is no comment, without what may be a password."""
    first = next((line.strip() for line in COMMENTS.sub("", text[:10000]).splitlines() if line.strip()), "a comment")
    first = SECRET.sub("...", first)
    return first if len(first) <= 76 else first[:73] + "..."


class Plan:
    """One run of `packcheck plan --json`, read from a file."""

    def __init__(self, path):
        # The application folder; the databases and logins that the wizard records as made.
        self.statements, self.app, self.made = [], "", []
        with open(path, encoding="utf-8") as lines:
            for line in lines:
                event = json.loads(line)
                if event["event"] == "sql":
                    self.statements.append(Statement(event))
                elif event["event"] == "print" and event["path"].endswith("\\Uninstall.dat"):
                    key, _, value = event["text"].strip().partition(":")
                    if key == "AppFolder":
                        self.app = value
                    elif key in ("DBNames", "DBLogins"):
                        self.made += [name.strip(" []") for name in value.split(",")[1:]]
        self.build = [statement for statement in self.statements if statement.script]

    def files(self):
        """The files that databases are made of, as the server sees them, each once."""
        return list(dict.fromkeys(path.replace("''", "'") for statement in self.build
                                  for path in FILE.findall(statement.text)))

    def names(self):
        """The databases and logins that the scripts name, and those that the wizard would drop, in small letters."""
        found = {name.lower() for name in self.made}
        for statement in self.build:
            for match in NAMED.finditer(statement.text):
                name = next(part for part in match.groups() if part is not None)
                found.add(name.replace("]]", "]").replace('""', '"').replace("''", "'").lower())
        return found


def is_same(received, planned):
    """Whether a server that keeps passwords to itself ("***") received what was planned."""
    received, planned = STAMP.sub("_.bkp", received), STAMP.sub("_.bkp", planned)
    if received == planned:
        return True
    # A line of stars in a comment is none of these. In a text within a text the quotes around are doubled.
    first, *others = re.split(r"N?'*(?<!\*)\*\*\*(?!\*)'*", received)
    if not others or not planned.startswith(first):
        return False
    at, end = len(first), len(planned) - len(others[-1])
    for piece in others[:-1]:
        at = planned.find(piece, at, end)
        if at < 0:
            return False
        at += len(piece)
    return at <= end and planned.endswith(others[-1])
