#!/usr/bin/env python3
"""Watches a process write its log and its record, and kills it at a chosen system call.

  KillAt.py PROCESS FOLDER LIST
      writes every write to the two files in FOLDER into LIST, one a line: system calls of the process since
      the one before, file, text in JSON; ends with the process
  KillAt.py PROCESS FOLDER LIST ENTRY NEXT CALLS [write]
      the same, but kills the process when it begins the system call that comes CALLS after the one that
      writes ENTRY (empty: after the start), with "write" the next one from there on that writes to one of the
      files; at the latest when it begins to write NEXT (empty: never)

Only the process's first thread is watched: the wizard has no other that writes. A record that were written
by two calls would stay cut when the second is the one that is killed.
"""

import ctypes
import json
import os
import pathlib
import signal
import struct
import sys

SEIZE, INTERRUPT, SYSCALL, SYSCALL_INFO = 0x4206, 0x4207, 24, 0x420E
TRACESYSGOOD = 1
ALL = 0x40000000  # threads too
STOPPED_AT_CALL = signal.SIGTRAP | 0x80
ENTRY_STOP = 1
# By architecture, the numbers of the calls that write: write, pwrite64, writev, pwritev.
WRITES = {0x40000003: {4, 181, 146, 334}, 0xC000003E: {1, 18, 20, 296}}

libc = ctypes.CDLL(None, use_errno=True)
libc.ptrace.argtypes = [ctypes.c_long, ctypes.c_long, ctypes.c_void_p, ctypes.c_void_p]
libc.ptrace.restype = ctypes.c_long


def ptrace(request, address=None, data=None):
    result = libc.ptrace(request, process, address, data)
    if result == -1:
        raise OSError(ctypes.get_errno(), "ptrace")
    return result


process, folder = int(sys.argv[1]), pathlib.Path(sys.argv[2])
wanted, last, calls = (*sys.argv[4:6], int(sys.argv[6])) if len(sys.argv) > 4 else (None, "", 0)
at_write = sys.argv[7:] == ["write"]
files = {str(folder / name) for name in ("Ta-luErrLog.txt", "Uninstall.dat")}
info = ctypes.create_string_buffer(88)


def write_call():
    """The file, address and length of the write that the process is about to do; None for other calls."""
    ptrace(SYSCALL_INFO, len(info), ctypes.cast(info, ctypes.c_void_p).value)
    kind, arch = struct.unpack_from("=BxxxI", info)
    number, file, address, length = struct.unpack_from("=4Q", info, 24)
    if kind != ENTRY_STOP or number not in WRITES.get(arch, ()):
        return kind, None
    try:
        name = os.readlink(f"/proc/{process}/fd/{file}")
    except OSError:
        return kind, None
    return kind, (pathlib.Path(name).name, address, length) if name in files else None


def follow(listing, memory):
    since, after = 0, 0 if wanted == "" else None
    ptrace(INTERRUPT)
    _, status = os.waitpid(process, ALL)
    print("watching", flush=True)
    while os.WIFSTOPPED(status):
        passed_on = 0
        if os.WSTOPSIG(status) == STOPPED_AT_CALL:
            kind, write = write_call()
            text = None
            if write:
                name, address, length = write
                memory.seek(address)
                text = memory.read(length).decode("cp1252", "replace")
                listing.write(f"{since} {name} {json.dumps(text)}\n")
                since = 0
            if kind == ENTRY_STOP:
                since += 1
                if after is not None:
                    after += 1
                    ends = text is not None and last and last in text
                    if ends or after > calls and (text is not None or not at_write):
                        os.kill(process, signal.SIGKILL)
                elif wanted and text is not None and wanted in text:
                    after = 0
        elif status >> 16 == 0:
            passed_on = os.WSTOPSIG(status)
        try:
            ptrace(SYSCALL, None, passed_on)
        except ProcessLookupError:
            pass  # killed: waitpid tells
        _, status = os.waitpid(process, ALL)


ptrace(SEIZE, None, TRACESYSGOOD)
with open(sys.argv[3], "w", encoding="utf-8") as listing, open(f"/proc/{process}/mem", "rb", 0) as memory:
    follow(listing, memory)
