#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Runs every test of a build, unless all of them have passed with exactly these files, programs and
packages: then it says so, and when. With --again, or any argument for ctest, the tests run always.

usage: tools/run_tests.py BUILD_FOLDER [--again] [CTEST_ARGUMENT...]"""

import datetime
import hashlib
import os
import pathlib
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent
PACKAGES = pathlib.Path("/var/lib/dpkg/status")
STAMP = "tests-passed"  # in the build folder: the state, then when its tests passed


def programs(build):
    return sorted(path for path in build.iterdir()
                  if path.is_file() and os.access(path, os.X_OK) or path.suffix == ".pdf")


def state(build):
    """A hash of all that a test can read: files of the tree, programs, list of tests, packages."""
    listed = subprocess.run(["git", "ls-files", "-z", "--cached", "--others", "--exclude-standard"],
                            cwd=ROOT, capture_output=True, check=True).stdout
    files = [ROOT / os.fsdecode(name) for name in sorted(set(listed.split(b"\0"))) if name]
    total = hashlib.blake2b()
    for path in [*files, *programs(build), *sorted(build.rglob("CTestTestfile.cmake")), PACKAGES]:
        total.update(os.fsencode(path) + b"\0")
        if path.is_file():
            total.update(hashlib.blake2b(path.read_bytes()).digest())
    for name in ("QT_QPA_PLATFORM", "QT_STYLE_OVERRIDE", "LANG", "LC_ALL"):
        total.update(f"{name}={os.environ.get(name)}\0".encode())
    return total.hexdigest()


def main():
    build = pathlib.Path(sys.argv[1]).resolve()
    arguments = [each for each in sys.argv[2:] if each != "--again"]
    stamp = build / STAMP
    try:
        now = state(build)
    except (OSError, subprocess.SubprocessError):
        now = None  # no git here: the tests run
    if len(sys.argv) == 2 and now and stamp.exists():
        before, when = stamp.read_text(encoding="utf-8").split("\n", 1)
        if before == now:
            print(f"All tests passed at {when.strip()}; no file, program or package has changed since."
                  "\n./test --again runs them again.")
            return 0
    if not arguments:
        stamp.unlink(missing_ok=True)
    status = subprocess.run(["ctest", "--preset", "release", *arguments], cwd=ROOT, check=False).returncode
    if status == 0 and not arguments and now and state(build) == now:
        when = datetime.datetime.now().astimezone().strftime("%Y-%m-%d %H:%M %z")
        stamp.write_text(f"{now}\n{when}\n", encoding="utf-8")
    return status


if __name__ == "__main__":
    sys.exit(main())
