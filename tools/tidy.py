#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Runs clang-tidy over the program and the simulator (src/ and sim/), over groups of files, as the
headers take most of its time, and as many groups at a time as there are cores. Files whose local
names clash go into the next group. Whether a file includes what it uses is not seen
here, but in the build of the sanitizers. A file that was clean is not looked at again until it, a header
of ours that it includes, or the list of checks has changed. Prints the findings; exit status 1 when there
is one.

usage: tools/tidy.py BUILD_FOLDER     (with compile_commands.json; the stamps stand there too)"""

import concurrent.futures
import hashlib
import itertools
import json
import os
import pathlib
import re
import shlex
import shutil
import subprocess
import sys
import threading
import time

ROOT = pathlib.Path(__file__).resolve().parent.parent
INCLUDE = re.compile(r'^\s*#\s*include\s+"([^"]+)"', re.MULTILINE)
GROUP = 200  # files looked at together: the headers are looked at once a group
WORKERS = min(os.cpu_count() or 2, 4)
NUMBER = itertools.count()  # of the groups


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


def translated(path):
    """The files of one entry: itself, or those that a file of CMake's includes (UNITY_BUILD)."""
    if path.parent.name != "Unity":
        return [path]
    return [pathlib.Path(each) for each in INCLUDE.findall(path.read_text(encoding="utf-8"))]


def flags(entry):
    """What the compiler is given of a file besides its name, without precompiled headers."""
    words = iter(shlex.split(entry["command"]))
    kept = []
    for word in words:
        if word in ("-o", "-c"):
            next(words)
        elif word == "-include":
            header = next(words)
            if not header.endswith("cmake_pch.hxx"):
                kept += [word, header]
        elif word.startswith(("-I", "-D", "-std=", "-W", "-isystem", "-f")) and word not in (
                "-Winvalid-pch", "-fpch-preprocess"):
            kept += [word, next(words)] if word in ("-I", "-D", "-isystem") else [word]
    return tuple(kept)


def compiles(path, words):
    """What the compiler complains of in a file; nothing when it is in order."""
    result = subprocess.run(
        ["clang++", *words, "-fsyntax-only", "-w", str(path)],
        cwd=ROOT, capture_output=True, text=True, check=False)
    return "" if result.returncode == 0 else result.stderr


class Groups:
    """Files of equal flags, several to a file that includes them all. The analyzer looks into included
    files only where the name of the including one contains UnifiedSource."""

    def __init__(self, folder, paths, words):
        self.folder = folder
        self.waiting = list(paths)
        self.words = words
        self.lock = threading.Lock()

    def take(self):
        with self.lock:
            group, self.waiting = self.waiting[:GROUP], self.waiting[GROUP:]
        return group

    def give_back(self, paths):
        """To the front: the next group has other files, so that one of these at least goes with them."""
        with self.lock:
            self.waiting = paths + self.waiting

    def look(self):
        """[(file, findings)] of the files of one group."""
        together = self.take()
        if not together:
            return []
        path = self.folder / f"UnifiedSource{next(NUMBER)}.cpp"
        while True:
            path.write_text("".join(
                f'#include "{each}"  // NOLINT(bugprone-suspicious-include)\n' for each in together),
                encoding="utf-8")
            complaints = compiles(path, self.words) if len(together) > 1 else ""
            if not complaints:
                break
            errors = [line for line in complaints.splitlines() if ": error:" in line]
            out = [each for each in together[1:]
                   if any(line.startswith(f"{each}:") for line in errors)] or together[1:]
            together = [each for each in together if each not in out]
            self.give_back(out)
        result = subprocess.run(
            ["clang-tidy", "--quiet", str(path), "--", *self.words], cwd=ROOT, capture_output=True,
            text=True, check=False)
        text = "" if result.returncode == 0 else result.stdout + result.stderr
        named = [each for each in together if f"{each}:" in text] or together
        return [(each, text if each in named else "") for each in together]


def findings(groups):
    """[(file, findings)] of all files, by as many workers as there are cores."""
    lock = threading.Lock()
    busy = [0]

    def work():
        found = []
        while True:
            with lock:
                at = next((each for each in groups if each.waiting), None)
                if at is None and not busy[0]:
                    return found
                busy[0] += at is not None
            if at is None:
                time.sleep(0.2)  # another worker may give some back
                continue
            try:
                found += at.look()
            finally:
                with lock:
                    busy[0] -= 1

    with concurrent.futures.ThreadPoolExecutor(WORKERS) as pool:
        return [each for done in [pool.submit(work) for _ in range(WORKERS)] for each in done.result()]


def main():
    build = pathlib.Path(sys.argv[1]).resolve()
    commands = json.loads((build / "compile_commands.json").read_text(encoding="utf-8"))
    files = {}
    for entry in commands:
        for path in translated(pathlib.Path(entry["file"])):
            if path.is_relative_to(ROOT / "src") or path.is_relative_to(ROOT / "sim"):
                files.setdefault(path, flags(entry))
    settings = (ROOT / ".clang-tidy").read_bytes()
    stamps = build / "tidy-stamps"
    stamps.mkdir(exist_ok=True)
    due = {}
    for path in sorted(files):
        name = stamps / path.relative_to(ROOT).as_posix().replace("/", "_")
        key = stamp(path, settings)
        if not name.exists() or name.read_text(encoding="ascii") != key:
            due[path] = (name, key)
    folder = build / "tidy"
    shutil.rmtree(folder, ignore_errors=True)
    folder.mkdir()
    by_flags = {}
    for path in due:
        by_flags.setdefault(files[path], []).append(path)
    told = {}
    for path, text in findings([Groups(folder, paths, words) for words, paths in by_flags.items()]):
        if text:
            told[path] = text
        else:
            due[path][0].write_text(due[path][1], encoding="ascii")
    for text in dict.fromkeys(told.values()):
        print(text, flush=True)
    print(f"clang-tidy: {len(files)} files, {len(due)} looked at, {len(told)} with findings")
    return 1 if told else 0


if __name__ == "__main__":
    sys.exit(main())
