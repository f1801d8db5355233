"""Makes what ./bench installs and runs: inputs.py DIR FILES BATCHES

copy/ is a pack with FILES small files in folders of 50, batches/ one with a script of so many batches;
copy.nsi and copy.wxs are the same tree for makensis and wixl, empty.nsi an installer of nothing.
"""

import random
import sys
import uuid
from pathlib import Path

FILES_A_FOLDER = 50
FIELDS = {"AppTitle": "Bench", "AppFolder": "Bench", "DBFolder": "Data", "FreshDBSript": "Rows.sql"}
NSIS_HEAD = 'Unicode true\nName Bench\nRequestExecutionLevel user\nSetCompress off\nOutFile "{}"\n'


def write_pack(pack):
    (pack / "Application").mkdir(parents=True)
    text = "".join(f"{key}\r\n{{\r\n{value}\r\n}}\r\n" for key, value in FIELDS.items())
    (pack / "AppCfg.txt").write_bytes(text.encode("ascii"))


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


def write_script(path, count):
    path.parent.mkdir(parents=True)
    lines = ["--taluGO", "USE Bench", "GO", "DELETE FROM dbo.Row", "GO"]
    for number in range(count):
        lines += [f"INSERT INTO dbo.Row (Id, Name) VALUES ({number}, N'The row with number {number}')", "GO"]
    path.write_bytes("\r\n".join(lines + [""]).encode("ascii"))


def main():
    root = Path(sys.argv[1])
    for name in ("copy", "batches"):
        write_pack(root / name)
        write_script(root / name / "SQLScript/Fresh/Rows.sql", int(sys.argv[3]))
    write_tree(root / "copy/Application", int(sys.argv[2]))
    write_installers(root, root / "copy/Application")


main()
