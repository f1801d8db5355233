"""A connection to a SQL Server through the driver that the wizard uses under Wine: batches as they stand, rows,
and the server's errors with their numbers. The password comes from SQL_PASSWORD, so that no command line has it.
"""

import ctypes
import os
import re
import sysconfig

DRIVER = f"/usr/lib/{sysconfig.get_config_var('MULTIARCH')}/odbc/libtdsodbc.so"
LOGIN_SECONDS = 15
# Of the interface: kinds of handles, attributes, results, and the type of a column read as UTF-16.
ENVIRONMENT, CONNECTION, STATEMENT = 1, 2, 3
VERSION, LOGIN_TIMEOUT = 200, 103
ERROR, NO_DATA, NULL_DATA = -1, 100, -1
WIDE = -8
LOGIN_FAILED = 18456
# The server's own databases.
OWN = ("master", "model", "msdb", "tempdb")


class SqlError(Exception):
    """What the server or the driver refuses: the server's number (0 for the driver's own words) and its text."""

    def __init__(self, records):
        self.number, self.text = next((record for record in records if record[0]), records[-1] if records else (0, "?"))
        super().__init__(f"{self.number}, {self.text}" if self.number else self.text)


def wide(text):
    """The text as the interface takes it, and its length in characters of 16 bits."""
    encoded = text.encode("utf-16-le", "surrogatepass")
    return encoded + b"\0\0", len(encoded) // 2


class Connection:
    """Raises SqlError when the server cannot be reached or refuses the login. A text says in its place what to
    connect to, and with what."""

    def __init__(self, server, login, database="master", text=""):
        self.odbc = ctypes.CDLL("libodbc.so.2")
        for function in ("AllocHandle", "DriverConnectW", "ExecDirectW", "Fetch", "GetDiagRecW", "MoreResults"):
            getattr(self.odbc, "SQL" + function).restype = ctypes.c_short
        self.handles = []
        environment = self.handle(ENVIRONMENT, None)
        self.odbc.SQLSetEnvAttr(environment, VERSION, ctypes.c_void_p(3), 0)
        self.connection = self.handle(CONNECTION, environment)
        self.odbc.SQLSetConnectAttrW(self.connection, LOGIN_TIMEOUT, ctypes.c_void_p(LOGIN_SECONDS), 0)
        # As the wizard writes it: what that cannot say, such as a semicolon in the password, cannot be said here.
        text, length = wide(text or f"driver={DRIVER};server={server};uid={login};pwd={os.environ['SQL_PASSWORD']};"
                            f"database={database};TDS_Version=7.3")
        if self.odbc.SQLDriverConnectW(self.connection, None, text, ctypes.c_short(length), None, 0, None, 0) == ERROR:
            raise SqlError(self.records(CONNECTION, self.connection))

    def handle(self, kind, parent):
        made = ctypes.c_void_p()
        self.odbc.SQLAllocHandle(kind, parent, ctypes.byref(made))
        self.handles.append((kind, made))
        return made

    def records(self, kind, handle):
        """(number, text) of each of its errors, without the driver's names in front of the text."""
        found = []
        state, text = (ctypes.create_string_buffer(size) for size in (12, 8192))
        number, length = ctypes.c_int(), ctypes.c_short()
        while self.odbc.SQLGetDiagRecW(kind, handle, len(found) + 1, state, ctypes.byref(number), text, 4096,
                                       ctypes.byref(length)) in (0, 1):
            said = text.raw[:2 * min(length.value, 4095)].decode("utf-16-le", "replace")
            found.append((number.value, re.sub(r"\A(\[[^\]]*\])+", "", said)))
        return found

    def run(self, batch):
        """Sends it and returns its first rows, lists of texts and None. Raises its first error when it is over."""
        statement = self.handle(STATEMENT, self.connection)
        text, length = wide(batch)
        rows, errors = None, []
        result = self.odbc.SQLExecDirectW(statement, text, length)
        while result != NO_DATA:
            if result == ERROR:
                new = self.records(STATEMENT, statement)
                if errors and (not new or not new[0][0]):
                    break  # the line is down, or there is nothing behind the error
                errors += new or [(0, "an error without words")]
            elif rows is None and self.columns(statement):
                rows = self.fetch(statement)
            result = self.odbc.SQLMoreResults(statement)
        self.odbc.SQLFreeHandle(*self.handles.pop())
        if errors:
            raise SqlError(errors)
        return rows or []

    def columns(self, statement):
        count = ctypes.c_short()
        self.odbc.SQLNumResultCols(statement, ctypes.byref(count))
        return count.value

    def fetch(self, statement):
        rows = []
        columns = self.columns(statement)
        buffer, length = ctypes.create_string_buffer(65536), ctypes.c_ssize_t()
        while self.odbc.SQLFetch(statement) in (0, 1):
            row = []
            for column in range(1, columns + 1):
                self.odbc.SQLGetData(statement, column, WIDE, buffer, ctypes.c_ssize_t(len(buffer)), ctypes.byref(length))
                size = min(length.value if length.value >= 0 else len(buffer), len(buffer) - 2)
                row.append(None if length.value == NULL_DATA else buffer.raw[:size].decode("utf-16-le", "replace"))
            rows.append(row)
        return rows

    def close(self):
        self.odbc.SQLDisconnect(self.connection)
        for kind, handle in reversed(self.handles):
            self.odbc.SQLFreeHandle(kind, handle)

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.close()


def quoted(name):
    return "[" + name.replace("]", "]]") + "]"


def names(connection):
    """The databases and logins of a server, but for its own databases."""
    return {"databases": [row[0] for row in connection.run("SELECT name FROM sys.databases")
                          if row[0].lower() not in OWN],
            "logins": [row[0] for row in connection.run("SELECT name FROM sys.server_principals WHERE type <> 'R'")]}


def beside(there, before):
    """The names that are there and were not before."""
    return {kind: [name for name in found if name not in before[kind]] for kind, found in there.items()}


def tables(server, login, database):
    """The tables of a database, each with its number of rows; none where the database cannot be entered."""
    found = []
    try:
        with Connection(server, login, database) as connection:
            for schema, table in connection.run("SELECT TABLE_SCHEMA, TABLE_NAME FROM INFORMATION_SCHEMA.TABLES "
                                                "WHERE TABLE_TYPE = 'BASE TABLE'"):
                rows = connection.run(f"SELECT COUNT(*) FROM {quoted(schema)}.{quoted(table)}")
                found.append({"name": f"{schema}.{table}", "rows": int(rows[0][0])})
    except SqlError:
        pass
    return found
