#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Runs clang-tidy over the program and the simulator (src/ and sim/), two files at a time. A file
that was clean is not looked at again until it, a header of ours that it includes, or the list of
checks has changed. Prints the findings; exit status 1 when there is one.

usage: tools/tidy.py BUILD_FOLDER     (with compile_commands.json; the stamps stand there too)"""

import concurrent.futures
import hashlib
import json
import os
import pathlib
import re
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent
INCLUDE = re.compile(r'^\s*#\s*include\s+"([^"]+)"', re.MULTILINE)


def headers(path, seen):
    """path and the headers of ours that it includes, directly or not."""
    seen.add(path)
    for name in INCLUDE.findall(path.read_text(encoding="utf-8")):
        for folder in (ROOT / "src", ROOT, path.parent):
            header = (folder / name).resolve()
            if header.is_file():
                if header not in seen:
                    headers(header, seen)
                break
    return seen


def stamp(path, settings):
    text = hashlib.sha256(settings)
    for source in sorted(headers(path, set())):
        text.update(source.read_bytes())
    return text.hexdigest()


def plain(commands, folder):
    """The commands without precompiled headers: each file has to include what it uses."""
    folder.mkdir(exist_ok=True)
    for entry in commands:
        entry["command"] = re.sub(
            r" (-include \S*cmake_pch\.hxx|-Winvalid-pch|-fpch-preprocess)\b", "", entry["command"])
    (folder / "compile_commands.json").write_text(json.dumps(commands), encoding="utf-8")
    return folder


def look(path, folder):
    result = subprocess.run(
        ["clang-tidy", "-p", str(folder), "--quiet", str(path)], capture_output=True, text=True,
        check=False)
    return result.returncode == 0, result.stdout


def main():
    build = pathlib.Path(sys.argv[1]).resolve()
    commands = json.loads((build / "compile_commands.json").read_text(encoding="utf-8"))
    files = sorted({pathlib.Path(entry["file"]) for entry in commands
                    if pathlib.Path(entry["file"]).is_relative_to(ROOT / "src")
                    or pathlib.Path(entry["file"]).is_relative_to(ROOT / "sim")})
    settings = (ROOT / ".clang-tidy").read_bytes()
    stamps = build / "tidy-stamps"
    stamps.mkdir(exist_ok=True)
    due = {}
    for path in files:
        name = stamps / path.relative_to(ROOT).as_posix().replace("/", "_")
        key = stamp(path, settings)
        if not name.exists() or name.read_text(encoding="ascii") != key:
            due[path] = (name, key)
    folder = plain(commands, build / "tidy")
    failed = 0
    with concurrent.futures.ThreadPoolExecutor(max_workers=min(os.cpu_count() or 2, 4)) as pool:
        for path, (clean, text) in zip(due, pool.map(lambda p: look(p, folder), due)):
            if clean:
                due[path][0].write_text(due[path][1], encoding="ascii")
            else:
                failed += 1
                print(text, flush=True)
    print(f"clang-tidy: {len(files)} files, {len(due)} looked at, {failed} with findings")
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
