#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Puts the licence line at the head of every source file that lacks it.

usage: tools/spdx.py           writes the line
       tools/spdx.py --check   names the files that lack it; exit status 1 when there is one"""

import pathlib
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent
LINE = "SPDX-License-Identifier: MIT"
DATA = ("tests/data/", "fuzz/corpus/")  # as other programs and the instrument write them
MARKS = {".h": "// ", ".cpp": "// ", ".py": "# ", ".sh": "# ", ".cmake": "# "}


def mark(name, text):
    """How a comment of the file begins; None for what is no source file."""
    path = pathlib.PurePath(name)
    if name.startswith(DATA):
        return None
    if path.name == "CMakeLists.txt" or (not path.suffix and text.startswith("#!")):
        return "# "
    return MARKS.get(path.suffix)


def main():
    check = "--check" in sys.argv
    lacking = []
    names = subprocess.run(["git", "ls-files"], cwd=ROOT, check=True, capture_output=True,
                           text=True).stdout.splitlines()
    for name in names:
        path = ROOT / name
        if path.is_symlink() or not path.is_file():
            continue
        try:
            text = path.read_text(encoding="utf-8")
        except UnicodeDecodeError:
            continue
        begin = mark(name, text)
        if begin is None or any(LINE in line for line in text.splitlines()[:3]):
            continue
        lacking.append(name)
        if not check:
            head = text.index("\n") + 1 if text.startswith("#!") else 0
            path.write_text(text[:head] + begin + LINE + "\n" + text[head:], encoding="utf-8")
    if check:
        print("\n".join(lacking + [f"licence lines: {len(lacking)} file(s) without one"])
              if lacking else "licence lines: in order")
    return 1 if check and lacking else 0


if __name__ == "__main__":
    sys.exit(main())
