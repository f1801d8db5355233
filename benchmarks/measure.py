"""Runs a command and appends what it took to RESULTS as one JSON object: NAME, seconds from start to
end, peak in kB, and the span in seconds of the work itself where one of these is given:

  --files DIR      from the first to the last inode change of the .bin files that are under DIR then
  --journal FILE   from the first to the last INSERT that the server has written to its journal
  --count N        how many files or INSERTs there must be
  --process NAME   take the peak of the prefix's process of that name instead of the command's own
"""

import argparse
import json
import os
import subprocess
import sys
import threading
import time
from pathlib import Path

INTERVAL = 0.005  # seconds between two looks at the journal; memory is looked at every fifth time
INSERT = b"INSERT INTO dbo.Row"


def peak_of(process):
    """The peak of a process's resident memory in kB, 0 when it has ended."""
    try:
        for line in Path(f"/proc/{process}/status").read_text("utf-8").splitlines():
            if line.startswith("VmHWM:"):
                return int(line.split()[1])
    except OSError:
        pass
    return 0


def find_process(name):
    """The process of that name in our own prefix; others may be running theirs."""
    ours = b"WINEPREFIX=" + os.environ["WINEPREFIX"].encode() + b"\0"
    for folder in Path("/proc").glob("[0-9]*"):
        try:
            if (folder / "comm").read_text().strip() == name and ours in (folder / "environ").read_bytes():
                return folder.name
        except OSError:
            continue
    return None


class Watch(threading.Thread):
    def __init__(self, process, name, journal):
        super().__init__(daemon=True)
        self.process, self.name = process, name
        self.journal = journal and open(journal, "rb")
        if journal:
            self.journal.seek(0, os.SEEK_END)
        self.begun = b""  # a line that is not whole yet
        self.peak, self.count, self.first, self.last, self.over = 0, 0, 0, 0, False

    def look(self):
        whole, end, self.begun = (self.begun + (self.journal.read() if self.journal else b"")).rpartition(b"\n")
        seen = (whole + end).count(INSERT)
        if seen:
            self.last = time.monotonic()
            self.first = self.first or self.last
            self.count += seen

    def run(self):
        turn = 0
        while not self.over:
            self.look()
            if turn % 5 == 0:
                if self.process is None:
                    self.process = find_process(self.name)
                self.peak = max(self.peak, peak_of(self.process) if self.process else 0)
            turn += 1
            time.sleep(INTERVAL)
        self.look()


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("results")
    parser.add_argument("name")
    for option in ("--files", "--journal", "--process"):
        parser.add_argument(option)
    parser.add_argument("--count", type=int)
    split = sys.argv.index("--")
    options, command = parser.parse_args(sys.argv[1:split]), sys.argv[split + 1:]

    begin = time.monotonic()
    program = subprocess.Popen(command, stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL)
    watch = Watch(None if options.process else program.pid, options.process, options.journal)
    watch.start()
    status = program.wait()
    record = {"name": options.name, "seconds": time.monotonic() - begin}
    watch.over = True
    watch.join()
    record["peak"] = watch.peak
    count = watch.count
    if options.journal:
        record["span"] = watch.last - watch.first
    if options.files:
        times = [file.stat().st_ctime_ns for file in Path(options.files).rglob("*.bin")]
        count = len(times)
        record["span"] = (max(times) - min(times)) / 1e9 if times else 0
    if status or (options.count is not None and count != options.count):
        sys.exit(f"measure: {options.name} ended with {status} after {count} of {options.count}")
    with open(options.results, "a", encoding="ascii") as results:
        results.write(json.dumps(record) + "\n")


main()
