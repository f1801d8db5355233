"""What is a password in what an installation leaves: log, records, statements, messages."""

import itertools
import os
import re

# In the fifth field of a data source, in a record, in a connection text, in a statement (a doubled quote stands
# for one; an unclosed text extends to the end).
FIELD = r"(?:[^,]*,){4}([^,\r\n]*)"
LITERAL = r"""N?(?:'((?:[^']|'')*)|"((?:[^"]|"")*))"""
STATEMENTS = [
    r"PASSWORD\s*=\s*" + LITERAL,
    r"\bsp_(?:addlogin|password|setapprole)\s+(?:@\w+\s*=\s*)?" + LITERAL + r"['\"]\s*,\s*(?:@\w+\s*=\s*)?" + LITERAL]
ENTRIES = [r"\A(?:SystemDSN:|creating - )" + FIELD, r"\APsWord:(.*)", r"\bPWD=([^;\r\n]*)", *STATEMENTS]


def passwords(text, places):
    return {value.strip() for place in places for match in re.finditer(place, text, re.I)
            for value in match.groups() if value and value.strip()}


class Mask:
    """Hides the passwords that this pack names, the server's, and those that a text itself shows as such."""

    def __init__(self, pack):
        lines = (pack / "AppCfg.txt").read_bytes().decode("cp1252", "replace").splitlines()
        begin = lines.index("SystemDSN") if "SystemDSN" in lines else len(lines)
        self.known = {os.environ["SQL_PASSWORD"]}
        for line in itertools.takewhile(lambda line: line != "}", lines[begin:]):
            self.known |= passwords(line, [r"\A" + FIELD])
        for script in pack.glob("*/*/*"):
            if script.parts[-3].lower() != "sqlscript" or not script.is_file():
                continue
            self.known |= passwords(script.read_bytes().decode("cp1252", "replace"), STATEMENTS)

    def hide(self, text):
        for secret in sorted(self.known | passwords(text, ENTRIES), key=len, reverse=True):
            text = re.sub(rf"(?<!\w){re.escape(secret)}(?!\w)", "***", text)
        return text
