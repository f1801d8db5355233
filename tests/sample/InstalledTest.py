#!/usr/bin/env python3
"""What tools/rehearsal/installed prints of a machine has no password in it: InstalledTest.py COMMAND."""

import os
import pathlib
import subprocess
import sys
import tempfile

SECRETS = ["Server-1", "Desk-2", "Clerk-3", "Role-4", "it''s-5", "Open-6"]
CREATE = """CREATE LOGIN Clerk WITH
  password=N'Clerk-3', CHECK_POLICY = OFF
GO
EXEC sp_setapprole 'Desk', N'Role-4'
"""
FILES = {
    "media/Pack/AppCfg.txt": "AppTitle\n{\nDesk\n}\nSystemDSN\n{\nSQL Server, Books ,BooksDB,clerk, Desk-2 \n}\n",
    "media/Pack/SQLScript/Fresh/Create.sql": CREATE,
    "wine/drive_c/Desk/Uninstall.dat": "AppFolder:C:\\Desk\n\nPsWord:Server-1\n\n"
                                       "SystemDSN:SQL Server, Books ,BooksDB,clerk, Desk-2 \n\n",
    "wine/drive_c/Desk/Ta-luErrLog.txt":
        "//\ncreating - SQL Server, Books ,BooksDB,clerk, Desk-2 \n\n"
        "//\n//\nno such database\nALTER LOGIN Clerk WITH PASSWORD = 'it''s-5' OLD_PASSWORD = 'Clerk-3'\n\n\n"
        "//\n//\nLogin failed: uid=sa;pwd=Server-1;database=Master\n\n\n"
        "//\n//\nIncorrect syntax near 'Role-4'.\nEXEC sp_addlogin 'x', 'Open-6\n\n\n",
    "wine/system.reg": "",
    "odbc/odbc.ini": "",
}
with tempfile.TemporaryDirectory() as place:
    for name, text in FILES.items():
        path = pathlib.Path(place, name)
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_bytes(text.replace("\n", "\r\n").encode("cp1252"))
    environment = {**os.environ, "SQL_PASSWORD": "Server-1"}
    said = subprocess.run([sys.executable, "-B", sys.argv[1], place, "127.0.0.1,1", "sa", "server"], check=False, capture_output=True, text=True,
                          env=environment)
    piped = subprocess.run([sys.executable, "-B", sys.argv[1], place], check=False, capture_output=True, text=True, env=environment,
                           input="a message box is open: \"near 'Clerk-3'\"\n")

assert said.returncode == 0, said.stderr
shown = [secret for secret in SECRETS if secret in said.stdout]
assert not shown, f"{shown} in\n{said.stdout}"
for line in ("  creating - SQL Server, Books ,BooksDB,clerk, ***", "  PsWord:***",
             "  Login failed: uid=sa;pwd=***;database=Master"):
    assert line in said.stdout, f"no '{line}' in\n{said.stdout}"
assert piped.stdout == "a message box is open: \"near '***'\"\n", piped
