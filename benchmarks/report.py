"""Makes the table of ./bench: report.py WORK FILES REMOVED BATCHES SCRIPTS [DOCUMENT]

Prints it; in DOCUMENT it takes the place of what stands between the two marks.
"""

import json
import subprocess
import sys
from datetime import date
from pathlib import Path
from statistics import median

BEGIN, END = "<!-- ./bench writes from here -->", "<!-- to here -->"
HEAD = ["| measured | | median | lowest to highest | ratio | peak memory |", "|---|---|--:|--:|--:|--:|"]


def said_by(*command):
    """The first line that a command says."""
    done = subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, check=False)
    return (done.stdout.splitlines() or [""])[0].strip()


def entry(file, key):
    return next(line.split(":", 1)[1].strip() for line in Path(file).read_text("utf-8").splitlines()
                if line.startswith(key))


class Results:
    def __init__(self, work):
        self.records = {}
        for line in (work / "results").read_text().splitlines():
            record = json.loads(line)
            self.records.setdefault(record["name"], []).append(record)
        runs = json.loads((work / "native.json").read_text())["benchmarks"]
        self.native = {run["run_name"].removeprefix("BM_"): [] for run in runs}
        for run in runs:
            if run["run_type"] == "iteration":
                rate = run.get("bytes_per_second") or run["items_per_second"]
                self.native[run["run_name"].removeprefix("BM_")].append(rate)

    def values(self, name, field):
        return [record[field] for record in self.records[name]]

    def peak(self, name):
        return f"{max(self.values(name, 'peak')) / 1024:.1f} MB"


def ratio_of(values, others):
    """The median of the ratios within one round: what slows the machine down slows both."""
    return median(value / other for value, other in zip(values, others))


def rows(title, names, reference, values, text, peak):
    """One row for each of `names`, a dictionary of keys and labels."""
    lines = []
    for key, label in names.items():
        mine = values(key)
        spread = f"{text(min(mine))} to {text(max(mine))}" if len(mine) > 1 else ""
        ratio = f"{ratio_of(mine, values(reference)):.2f}" if reference else ""
        lines.append(f"| {title} | {label} | {text(median(mine))} | {spread} | {ratio} | {peak(key)} |")
        title = ""
    return lines


def native_rows(results):
    parts = []
    for title, reference, names in (
            ("configuration, MB/s", "CfgMemchr", {"CfgMemchr": "lines counted by memchr",
                                                  "CfgRead/GetCfgCount": "`GetCfgCount`",
                                                  "CfgRead/GetCfgValue": "`GetCfgValue`"}),
            ("script of 16 MB, MB/s", "ScriptMemchr", {"ScriptMemchr": "lines counted by memchr",
                                                       "ScriptPlainSplit": "plain splitter",
                                                       "ScriptRun/BuildDatabase": "`BuildDatabase`",
                                                       "ScriptRun/BackupDatabases": "`BackupDatabases`",
                                                       "ScriptRun/BuildDatabaseJournal":
                                                           "`BuildDatabase`, with journal",
                                                       "ScriptRun/BackupDatabasesJournal":
                                                           "`BackupDatabases`, with journal"})):
        group = reference.removesuffix("Memchr")
        parts += rows(title, names, reference, results.native.__getitem__, lambda rate: f"{rate / 1e6:.0f}",
                      lambda key, first=reference, group=group:
                      results.peak(f"native-{group}") + " in all" if key == first else "")
    files = results.native["CopyFiles"]
    parts.append(f"| copying, files/ms | simulated machine | {median(files) / 1e3:.0f} | "
                 f"{min(files) / 1e3:.0f} to {max(files) / 1e3:.0f} | | {results.peak('native-Copy')} |")
    return parts


def verdict(what, value, limit):
    return f"- {what}: {'met' if value < limit else 'missed'} ({value:.2f}, to be below {limit})"


def make(work, files, removed, batches, scripts):
    results = Results(work)
    span = lambda name: results.values(name, "span")
    seconds = lambda name: results.values(name, "seconds")
    installers = {"copy-setup": "`Setup.exe`", "copy-nsis": "NSIS", "copy-msi": ".msi (wixl)",
                  "copy-loop": "`CopyFileA` loop"}
    silent = {key: label for key, label in installers.items() if key != "copy-setup"}
    clients = {"batches-setup": "`Setup.exe`", "batches-bsqldb": "`bsqldb`"}
    starts = {"start-setup": "`Setup.exe`", "start-picture": "`Setup.exe`, background picture",
              "start-nsis": "empty NSIS installer"}
    sizes = {"size-Setup.exe": "`Setup.exe`", "size-empty-nsis.exe": "empty NSIS installer"}
    checks = {"pack-check": "`packcheck check`", "pack-plan": "`packcheck plan`"}
    size = sum(file.stat().st_size for file in (work / "inputs/large").rglob("*.sql")) // 1_000_000
    brief = lambda value: f"{value:.2f}"
    none = lambda key: ""
    table = HEAD + rows(f"{files} files, first to last, s", installers, "copy-nsis", span, brief, results.peak)
    table += rows("the same, start to end, s", silent, "copy-nsis", seconds, brief, none)
    in_memory = {f"memory-{who}": installers[f"copy-{who}"] for who in ("setup", "nsis", "loop")}
    if "memory-setup" in results.records:
        table += rows(f"{files} files in memory, s", in_memory, "memory-nsis", span, brief, results.peak)
        memory_goals = [verdict(f"copying in memory beside {in_memory[peer]}",
                                ratio_of(span("memory-setup"), span(peer)), limit)
                        for peer, limit in (("memory-nsis", 1), ("memory-loop", 1.1))]
    else:
        memory_goals = ["- copying in memory: not measured, there is no memory file system"]
    table += rows(f"{removed} files installed, first to last, s", {"fill-setup": "`Setup.exe`", "fill-delete": "NSIS"},
                  "fill-delete", span, brief, none)
    table += rows("taken back, with a record as long, start to end, s",
                  {"remove-setup": "`Uninstall.exe`", "remove-delete": "NSIS, `Delete` for each file",
                   "remove-tree": "NSIS, `RMDir /r`"}, "remove-delete", seconds, brief, results.peak)
    table += rows(f"{batches} batches, first to last, s", clients, "batches-bsqldb", span, brief, results.peak)
    rate = lambda name: [int(batches.replace(",", "")) / value for value in seconds(name)]
    table += rows("batches of `tsql`, a second", {"tsql-nothing": "`SET NOCOUNT ON`", "tsql-Rows": "`INSERT`"}, "tsql-nothing",
                  rate, lambda value: f"{value:,.0f}", none)
    table += rows("script of 401 batches and 2 MB, start to Finish, s", {"rehearsal": "`Setup.exe`"}, None, seconds, brief,
                  results.peak)
    table.append(f"| the stand-in, after all batches | | | | | {results.peak('standin')} |")
    table += rows("first window, ms", starts, "start-nsis", seconds, lambda value: f"{value * 1e3:.0f}",
                  results.peak)
    table += rows("file size, kB", sizes, "size-empty-nsis.exe", lambda key: results.values(key, "bytes"),
                  lambda value: f"{value / 1e3:.0f}", none)
    table += rows(f"pack of {scripts} scripts, {size} MB, s", checks, None, seconds, brief, results.peak)
    table += native_rows(results)

    reader = max(ratio_of(results.native["CfgMemchr"], results.native[f"CfgRead/GetCfg{which}"])
                 for which in ("Count", "Value"))
    script = max(ratio_of(results.native["ScriptPlainSplit"], results.native[f"ScriptRun/{which}"])
                 for which in ("BuildDatabase", "BackupDatabases"))
    goals = [verdict("copying beside NSIS", ratio_of(span("copy-setup"), span("copy-nsis")), 1),
             *memory_goals,
             verdict("taking back beside installing", ratio_of(seconds("remove-setup"), span("fill-setup")), 1),
             verdict("batches beside `bsqldb`", ratio_of(span("batches-setup"), span("batches-bsqldb")), 1),
             verdict("the script of 401 batches, seconds", median(seconds("rehearsal")), 10),
             verdict("first window beside NSIS's", ratio_of(seconds("start-setup"), seconds("start-nsis")), 1),
             verdict("the slower reader, times `memchr`'s time", reader, 3),
             verdict("the slower of executor and scan, times the splitter's time", script, 4),
             verdict("the slower command of `packcheck`, seconds",
                     max(median(seconds(check)) for check in checks), 2)]
    machine = (f"Measured on {date.today()}: {entry('/proc/cpuinfo', 'model name')}, "
               f"{said_by('nproc')} cores, {int(entry('/proc/meminfo', 'MemTotal').split()[0]) >> 20} GB, "
               f"Linux {said_by('uname', '-r')}, load {(work / 'load').read_text().strip()} at the start; "
               f"{said_by('wine', '--version')}, NSIS {said_by('makensis', '-VERSION')}, "
               f"wixl {said_by('wixl', '--version')}, FreeTDS {said_by('dpkg-query', '-W', '-f', '${Version}', 'freetds-bin')}, "
               f"mingw-w64 GCC {said_by('i686-w64-mingw32-g++-posix', '-dumpfullversion')}, "
               f"GCC {said_by('c++', '-dumpfullversion')}, commit "
               f"{said_by('git', '-C', str(Path(__file__).parent), 'describe', '--always', '--dirty')}; "
               f"{len(span('copy-setup'))} rounds of copying, batches and packs, {len(span('fill-setup'))} of taking back, "
               f"{len(seconds('start-setup'))} of first windows, 5 natively, always in turn. A "
               "ratio is the median of the rounds' ratios.")
    return "\n".join([machine, "", *table, "", *goals])


def main():
    work = Path(sys.argv[1])
    table = make(work, *(f"{int(count):,}" for count in sys.argv[2:6]))
    print(table)
    if len(sys.argv) < 7:
        return
    document = Path(sys.argv[6])
    text = document.read_text(encoding="utf-8") if document.exists() else f"# Performance\n\n{BEGIN}\n{END}\n"
    before, mark, rest = text.partition(BEGIN)
    if not mark or END not in rest:
        sys.exit(f"report: {document} has no marks to write between")
    document.write_text(f"{before}{BEGIN}\n{table}\n{END}{rest.partition(END)[2]}", encoding="utf-8")


main()
