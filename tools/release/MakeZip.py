#!/usr/bin/env python3
"""Packs a release: MakeZip.py ROOT OUT. Names, order, times and contents depend on the sources alone."""

import hashlib
import html
import pathlib
import re
import subprocess
import sys
import zipfile

# The parts of other projects that are linked into the programs, by the Debian package they come from.
LICENCES = {
    "GCC runtime libraries": "gcc-mingw-w64-base",
    "mingw-w64 runtime": "mingw-w64-common",
    "CLI11": "libcli11-dev",
}
# All files get the earliest time that a zip can hold.
TIME = (1980, 1, 1, 0, 0, 0)


def page(root, name):
    """A manual as one HTML file; headings can be linked to as in the sources."""
    markdown = (root / "docs" / f"{name}.md").read_text("utf-8")
    body = subprocess.run(["cmark-gfm", "-e", "table"], input=markdown, capture_output=True, text=True,
                          check=True).stdout
    body = re.sub(r'href="([\w-]+)\.md', r'href="\1.html', body)

    def anchored(match):
        slug = re.sub(r"<[^>]*>", "", match[2]).lower()
        slug = re.sub(r"[^\w\- ]", "", html.unescape(slug)).replace(" ", "-")
        return f'<h{match[1]} id="{slug}">{match[2]}</h{match[1]}>'

    body = re.sub(r"<h(\d)>(.*?)</h\1>", anchored, body)
    title = re.search(r"^# (.*)", markdown)[1]
    frame = (root / "tools/release/page.html").read_text("utf-8")
    return frame.replace("@TITLE@", html.escape(title)).replace("@BODY@", body)


def steady(package):
    """An .msi as if it were always made at the same time: wixl gives it a new code and the current time."""
    time = (119600064 * 10**9).to_bytes(8, "little")
    code = b"{7C1E0B52-94D3-4F68-A2B7-51E60D8F3C94}"
    package, found = re.subn(rb"\{[0-9A-F-]{36}\}(\0\0@\0\0\0).{8}(@\0\0\0).{8}",
                             lambda match: code + match[1] + time + match[2] + time, package, flags=re.DOTALL)
    assert found == 1, "the .msi is not as wixl writes it"
    return package


def contents(root):
    built = root / "build/win32"
    files = {
        "packcheck.exe": (built / "tools/packcheck/packcheck.exe").read_bytes(),
        "drive.exe": (built / "tools/drive/drive.exe").read_bytes(),
        "Pack/Setup.exe": (built / "src/platform/win32/Setup.exe").read_bytes(),
        "Pack/Application/Uninstall.exe": (built / "src/uninstall/Uninstall.exe").read_bytes(),
        "Check/win32_tests.exe": (built / "tests/win32/win32_tests.exe").read_bytes(),
    }
    for name in ("check-this-machine.cmd", "Check/Check.js"):
        text = (root / "tools/release" / pathlib.Path(name).name).read_bytes()
        files[name] = text.replace(b"\n", b"\r\n")
    sample = built / "samples/SalesDesk/pack"
    for path in filter(pathlib.Path.is_file, sample.rglob("*")):
        data = path.read_bytes()
        files[f"Check/Pack/{path.relative_to(sample)}"] = steady(data) if path.suffix == ".msi" else data
    # Other files in the folder are not part of the release.
    starter = root / "samples/Starter"
    tracked = subprocess.run(["git", "-C", starter, "ls-files", "-z"], capture_output=True, text=True, check=True)
    for name in filter(None, tracked.stdout.split("\0")):
        files[f"Pack/{name}"] = (starter / name).read_bytes()
    # The sources have no program for it to lead to.
    empty = b"Shotcut\r\n{\r\n"
    files["Pack/AppCfg.txt"] = files["Pack/AppCfg.txt"].replace(
        empty, empty + b"\\Uninstall.exe,Programs,Remove My Product\r\n")
    for name in ("pack-format", "operators", "drive"):
        files[f"{name}.html"] = page(root, name).encode()
    for part, package in LICENCES.items():
        files[f"Licences/{part}.txt"] = pathlib.Path(f"/usr/share/doc/{package}/copyright").read_bytes()
    sums = [f"{hashlib.sha256(data).hexdigest()}  {name}\n" for name, data in sorted(files.items())]
    files["SHA256SUMS"] = "".join(sums).encode()
    return files


root, out = map(pathlib.Path, sys.argv[1:])
version = re.search(r"VERSION ([\d.]+)", (root / "CMakeLists.txt").read_text("utf-8").split("project(")[1])[1]
top = f"TA-LU-Setup-{version}"
with zipfile.ZipFile(out / f"{top}.zip", "w", zipfile.ZIP_DEFLATED) as archive:
    for name, data in sorted(contents(root).items()):
        entry = zipfile.ZipInfo(f"{top}/{name}", TIME)
        entry.compress_type = zipfile.ZIP_DEFLATED
        entry.create_system = 0
        archive.writestr(entry, data)
