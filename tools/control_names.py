#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Writes docs/control-names.md: every window with its caption and every control with its kind and
caption, as the program lists them. Names of windows and controls are used by scripts, by session
files of other programs and by the tests; they never change.

usage: tools/control_names.py QK47-VNA           writes the page
       tools/control_names.py --check QK47-VNA   exit status 1 when the page is out of date"""

import pathlib
import re
import subprocess
import sys
import tempfile

ROOT = pathlib.Path(__file__).resolve().parent.parent
PAGE = ROOT / "docs" / "control-names.md"
HEAD = """# Names of windows and controls

Made by `tools/control_names.py` from the running program. Scripts for the
[text front panel](manual/85-console.md) address a control as `WINDOW.CONTROL`. Names are fixed: they do not
change when a caption does.
"""
CONTROL = re.compile(r"^= (\S+) (\S+) (?:enabled|disabled) (?:shown|hidden) (.*) \| ")


def window_names():
    text = (ROOT / "src" / "core" / "window_names.h").read_text(encoding="utf-8")
    return re.findall(r'(k\w+)\s*=\s*"(\w+)"', text)


def captions():
    """{constant of the window: title}, from the forms."""
    found = {}
    for path in sorted((ROOT / "src" / "forms").glob("*.cpp")):
        text = path.read_text(encoding="utf-8")
        for constant, title in re.findall(r'window::(k\w+),\s*"([^"]*)"', text):
            found.setdefault(constant, title)
    return found


def controls(vna, names):
    """{window: [(control, kind, caption)]}, asked of the program."""
    with tempfile.TemporaryDirectory() as folder:
        script = "".join(f"controls {name}\n" for name in names) + "quit\n"
        output = subprocess.run(
            [vna, "--console", "--demo", "--pace", "fast", "--folder", folder], input=script,
            capture_output=True, text=True, timeout=300, check=True).stdout
    found, left = {}, list(names)
    rows = []
    for line in output.splitlines():
        match = CONTROL.match(line + " ")
        if match:
            rows.append(match.groups())
        elif re.match(r"(ok|error) \d+", line) and left:
            found[left.pop(0)] = rows
            rows = []
    return found


def page(vna):
    windows = window_names()
    titles = captions()
    listed = controls(vna, [name for _, name in windows])
    text = HEAD
    for constant, name in windows:
        title = titles.get(constant, "")
        text += f"\n## {name}" + (f": {title}" if title else "") + "\n\n"
        if not listed[name]:
            text += "No controls.\n"
            continue
        text += "| Control | Kind | Caption |\n|---|---|---|\n"
        for control, kind, caption in listed[name]:
            caption = caption.split("\\n")[0].strip().replace("|", "\\|")
            text += f"| `{control}` | {kind} | {caption} |\n"
    return text


def main():
    check = sys.argv[1] == "--check"
    text = page(sys.argv[-1])
    if check:
        if PAGE.read_text(encoding="utf-8") == text:
            print("names of controls: in order")
            return 0
        print("docs/control-names.md is out of date: run tools/control_names.py QK47-VNA")
        return 1
    PAGE.write_text(text, encoding="utf-8")
    return 0


if __name__ == "__main__":
    sys.exit(main())
