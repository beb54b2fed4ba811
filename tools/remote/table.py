#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Puts the table of remote commands anew into the manual: table.py build/qk47-remote-table"""

import pathlib
import subprocess
import sys

PAGE = pathlib.Path(__file__).resolve().parent.parent.parent / "docs" / "manual" / "86-remote.md"
HEADING = "## Commands\n"


def main():
    table = subprocess.run([sys.argv[1]], capture_output=True, text=True, check=True).stdout
    text = PAGE.read_text(encoding="utf-8")
    before, _, rest = text.partition(HEADING)
    introduction = rest.partition("\n| ")[0].rstrip("\n")
    PAGE.write_text(f"{before}{HEADING}{introduction}\n\n{table}", encoding="utf-8")


if __name__ == "__main__":
    main()
