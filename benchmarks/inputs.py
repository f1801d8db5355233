"""Makes what ./bench installs, runs and checks: inputs.py DIR FILES REMOVED BATCHES SCRIPTS

copy/ is a pack with FILES small files in folders of 50, removal/ one with REMOVED, batches/ one with a script of
so many batches, nothing.sql as many batches that ask for nothing; rehearsal/ a pack with one script of 401 batches
and 2 MB, large/ one with SCRIPTS scripts of 100 kB each. copy.nsi and copy.wxs are the first tree for makensis and
wixl; removal-delete.nsi and removal-tree.nsi the second, with an uninstaller that deletes each file, or the whole
folder; empty.nsi is an installer of nothing.
"""

import random
import sys
import uuid
from pathlib import Path

FILES_A_FOLDER = 50
LARGE_SCRIPT = 100_000  # bytes
FIELDS = {"AppTitle": "Bench", "AppFolder": "Bench", "DBFolder": "Data"}
NSIS_HEAD = 'Unicode true\nName Bench\nRequestExecutionLevel user\nSetCompress off\nOutFile "{}"\n'


def write_lines(path, lines):
    path.parent.mkdir(parents=True, exist_ok=True)
    path.write_bytes("\r\n".join([*lines, ""]).encode("ascii"))


def write_pack(pack, scripts, **more):
    (pack / "Application").mkdir(parents=True)
    fields = {**FIELDS, "FreshDBSript": "\r\n".join(scripts), **more}
    write_lines(pack / "AppCfg.txt", [f"{key}\r\n{{\r\n{value}\r\n}}" for key, value in fields.items()])


def write_tree(tree, count):
    """Small files of 200 to 6000 bytes that do not compress, the same ones at every run."""
    source = random.Random(5000)
    for number in range(count):
        folder = tree / f"Folder {number // FILES_A_FOLDER:03}"
        folder.mkdir(exist_ok=True)
        (folder / f"File {number:04}.bin").write_bytes(source.randbytes(source.randint(200, 6000)))


def component(folder, root):
    """wixl takes its sources relative to the folder that it is started in."""
    files = "".join(f'<File Id="F{file.stem[5:]}" Source="{file.relative_to(root)}"/>'
                    for file in sorted(folder.iterdir()))
    name = folder.name[7:]
    return (f'<Directory Id="D{name}" Name="{folder.name}"><Component Id="C{name}" '
            f'Guid="{uuid.uuid5(uuid.NAMESPACE_OID, name)}">{files}</Component></Directory>')


def write_installers(root, tree):
    (root / "copy.nsi").write_text(
        NSIS_HEAD.format("copy-nsis.exe") + 'SilentInstall silent\nInstallDir "C:\\Peers\\nsis"\n'
        f'Section\nSetOutPath "$INSTDIR"\nFile /r "{tree}/*"\nSectionEnd\n')
    (root / "empty.nsi").write_text(
        NSIS_HEAD.format("empty-nsis.exe") + "Page directory\nPage instfiles\nSection\nSectionEnd\n")
    folders = sorted(tree.iterdir())
    references = "".join(f'<ComponentRef Id="C{folder.name[7:]}"/>' for folder in folders)
    (root / "copy.wxs").write_text(
        '<Wix xmlns="http://schemas.microsoft.com/wix/2006/wi"><Product Name="Bench" Language="1033" '
        f'Id="{uuid.uuid5(uuid.NAMESPACE_OID, "product")}" Version="1.0.0" Manufacturer="Bench" '
        f'UpgradeCode="{uuid.uuid5(uuid.NAMESPACE_OID, "upgrade")}"><Package InstallerVersion="200" '
        'Compressed="yes"/><Media Id="1" Cabinet="copy.cab" EmbedCab="yes"/>'
        '<Directory Id="TARGETDIR" Name="SourceDir"><Directory Id="INSTALLDIR" Name="Peers">'
        + "".join(component(folder, root) for folder in folders) +
        f'</Directory></Directory><Feature Id="All" Level="1">{references}</Feature></Product></Wix>')


def write_uninstallers(root, tree):
    """Of the two ways, NSIS' manual warns of the second: it deletes what others have put there, too."""
    folders = sorted(tree.iterdir())
    single = "".join(f'Delete "$INSTDIR\\{file.relative_to(tree)}"\n'.replace("/", "\\")
                     for folder in folders for file in sorted(folder.iterdir()))
    single += "".join(f'RMDir "$INSTDIR\\{folder.name}"\n' for folder in folders)
    for name, removal in (("delete", single), ("tree", 'RMDir /r "$INSTDIR"\n')):
        (root / f"removal-{name}.nsi").write_text(
            NSIS_HEAD.format(f"removal-{name}.exe") + f'SilentInstall silent\nInstallDir "C:\\Peers\\{name}"\n'
            f'Section\nSetOutPath "$INSTDIR"\nFile /r "{tree}/*"\nWriteUninstaller "$INSTDIR\\uninstall.exe"\n'
            f'SectionEnd\nSection Uninstall\n{removal}SectionEnd\n')


def write_batches(path, count):
    lines = ["--taluGO", "USE Bench", "GO", "DELETE FROM dbo.Row", "GO"]
    for number in range(count):
        lines += [f"INSERT INTO dbo.Row (Id, Name) VALUES ({number}, N'The row with number {number}')", "GO"]
    write_lines(path, lines)


def write_nothing(path, count):
    write_lines(path, ["SET NOCOUNT ON", "GO"] * count)


def write_rehearsal(path, count, size):
    """A database, a table in each tenth batch, and rows in the others."""
    lines = ["--taluGO", "CREATE DATABASE Rehearsal ON (NAME = N'Rehearsal', FILENAME = N'C:\\Old\\Rehearsal.mdf')", "GO",
             "USE Rehearsal", "GO"]
    batch = size // (count - 2) * 10 // 9
    for number in range(count - 2):
        if number % 10 == 0:
            lines += [f"CREATE TABLE dbo.Table{number} (Id INT NOT NULL PRIMARY KEY, Name NVARCHAR(80))", "GO"]
            continue
        row = f"INSERT INTO dbo.Table{number // 10 * 10} (Id, Name) VALUES ({number}{{:03}}, N'A row of a table of a script that is long')"
        lines += [row.format(at) for at in range(batch // (len(row) + 2))] + ["GO"]
    write_lines(path, lines)


def write_large(pack, count):
    """A database in the first script, a table of its own in each, and rows in batches of ten."""
    names = [f"Table {number:04}.sql" for number in range(count)]
    # What the backup knows is counted against the scripts that it searches.
    write_pack(pack, names, DBSript="\r\n".join(names))
    (pack / "Setup.exe").touch()
    for number, name in enumerate(names):
        lines = ["--taluGO"]
        if number == 0:
            lines += ["CREATE DATABASE Bench ON (NAME = N'Bench', FILENAME = N'C:\\Old\\Bench.mdf')", "GO"]
        lines += ["USE Bench", "GO", f"CREATE TABLE dbo.Table{number} (Id INT, Name NVARCHAR(60))", "GO"]
        size = row = 0
        while size < LARGE_SCRIPT:
            row += 1
            lines.append(f"INSERT INTO dbo.Table{number} (Id, Name) VALUES ({row}, N'The row with number {row}')")
            size += len(lines[-1]) + 2
            if row % 10 == 0:
                lines.append("GO")
        write_lines(pack / "SQLScript/Fresh" / name, [*lines, "GO"])


def main():
    root = Path(sys.argv[1])
    files, removed, batches, scripts = map(int, sys.argv[2:])
    for name in ("copy", "batches"):
        write_pack(root / name, ["Rows.sql"])
        write_batches(root / name / "SQLScript/Fresh/Rows.sql", batches)
    write_nothing(root / "nothing.sql", batches)
    write_pack(root / "rehearsal", ["All.sql"])
    write_rehearsal(root / "rehearsal/SQLScript/Fresh/All.sql", 401, 2_000_000)
    write_tree(root / "copy/Application", files)
    write_installers(root, root / "copy/Application")
    write_pack(root / "removal", ["Rows.sql"], Shotcut="\\Uninstall.exe,Programs,Bench")
    write_tree(root / "removal/Application", removed)
    write_uninstallers(root, root / "removal/Application")
    write_large(root / "large", scripts)


main()
