#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Checks docs/behaviour.md: every entry names at least one test, a C++ test (`Suite.Name`) or a script
(`tests/.../name.py`), and every test that it names exists.
From the first section on the page has only tables: a paragraph or a list would be an entry without a test.
Prints what is wrong; exit status 1 when there is something."""

import pathlib
import re
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent
ROW = re.compile(r"^\| [ICK] \| (.*) \| (.*) \|$")
TABLE_HEAD = ("| | Behaviour | Test |", "|---|---|---|")
TEST = re.compile(r"TEST(?:_[FP])?\((\w+), (\w+)\)")


def main():
    tests = {".".join(found) for path in (ROOT / "tests").rglob("*.cpp")
             for found in TEST.findall(path.read_text(encoding="utf-8"))}
    wrong, entries, in_section = [], 0, False
    for number, line in enumerate((ROOT / "docs" / "behaviour.md").read_text(
            encoding="utf-8").splitlines(), 1):
        match = ROW.match(line)
        if not match:
            in_section |= line.startswith("## ")
            if in_section and line.strip() and not line.startswith("## ") and line not in TABLE_HEAD:
                wrong.append(f"line {number}: outside the tables, or not an entry: {line[:60]}")
            continue
        entries += 1
        named = re.findall(r"`([\w.]+)`", match[2])
        scripts = re.findall(r"`(tests/[\w./]+\.py)`", match[2])
        if not named and not scripts:
            wrong.append(f"line {number}: no test: {match[1]}")
        wrong += [f"line {number}: there is no test {name}" for name in named if name not in tests]
        wrong += [f"line {number}: there is no {name}" for name in scripts if not (ROOT / name).exists()]
    if not entries:
        wrong.append("no entry found")
    print("\n".join(f"docs/behaviour.md, {text}" for text in wrong) if wrong
          else f"behaviour: {entries} entries, in order")
    return 1 if wrong else 0


if __name__ == "__main__":
    sys.exit(main())
