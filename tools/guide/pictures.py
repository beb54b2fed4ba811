#!/usr/bin/env python3
"""Makes the pictures of the manual from the program as it is: on a desktop of its own the
demonstration plays its first measurement, and each window is taken when it shows something.

usage: tools/guide/pictures.py QK47-VNA     (writes docs/manual/pictures/*.png)

Needs what tests/desktop/run installs."""

import pathlib
import sys
import tempfile
import time

ROOT = pathlib.Path(__file__).resolve().parent.parent.parent
sys.path.insert(0, str(ROOT / "tests" / "desktop"))

from desk import DEADLINE, Desk, plain  # noqa: E402

MAIN = "QK47-20-09 VNA Control"
FOLDER = ROOT / "docs" / "manual" / "pictures"


def wait_for_text(desk, window, text):
    deadline = time.monotonic() + 4 * DEADLINE
    while plain(text) not in desk.text(window):
        if time.monotonic() > deadline:
            raise SystemExit(f"{window} does not say {text}")
        time.sleep(0.5)


def take(desk, name, window):
    desk.picture(str(FOLDER / f"{name}.png"), window)
    print(f"{name}.png")


def main():
    FOLDER.mkdir(exist_ok=True)
    desk = Desk("1360x860x24")
    try:
        with tempfile.TemporaryDirectory() as session:
            desk.start(sys.argv[1], session, "--demo")
            desk.wait("the end of the start", lambda: set(desk.windows()) == {MAIN, "Bench"})
            words = desk.words("Bench")
            desk.click(*map(round, words["Calibrate"]))
            desk.wait_for("Open Cal")
            take(desk, "prompt", "Open Cal")
            take(desk, "bench", "Bench")
            wait_for_text(desk, "Calibration", "Still to measure: Load")
            take(desk, "calibration", "Calibration")
            wait_for_text(desk, MAIN, "SWEEP ON")
            time.sleep(4)
            take(desk, "main-window", MAIN)
            for word, title, name in (("Enhancement", "Enhancement Set Up", "enhancement"),
                                      ("Display", "Display Set Up", "display")):
                desk.click(*map(round, desk.words(MAIN)[word]))
                desk.wait_for(title)
                time.sleep(0.5)
                take(desk, name, title)
                desk.key("Escape")
                desk.wait_gone(title)
            desk.program.terminate()
            desk.program.wait(DEADLINE)
    finally:
        desk.end()


if __name__ == "__main__":
    main()
