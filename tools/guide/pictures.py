#!/usr/bin/env python3
"""Makes the pictures of the manual from the program as it is: on a desktop of its own the
windows are opened by the keyboard and taken, and the bench with the first prompt of its play.

usage: tools/guide/pictures.py QK47-VNA     (writes docs/manual/pictures/*.png)

Needs what tests/desktop/run installs."""

import pathlib
import sys
import tempfile
import time

ROOT = pathlib.Path(__file__).resolve().parent.parent.parent
sys.path.insert(0, str(ROOT / "tests" / "desktop"))

from desk import DEADLINE, Desk  # noqa: E402

MAIN = "QK47-20-09 VNA Control"
FOLDER = ROOT / "docs" / "manual" / "pictures"


def take_from(desk, path):
    """A picture of a window needs few colours."""
    desk.output("mogrify", "-strip", "+dither", "-colors", "64", path)
    print(pathlib.Path(path).name)


def take(desk, name, window):
    path = str(FOLDER / f"{name}.png")
    desk.picture(path, window)
    take_from(desk, path)


def item(menu, row):
    """The keys that choose a row of a menu."""
    return [menu, "Home", *["Down"] * row, "Return"]


# Keys on the main window, the title of the window that opens, the name of the picture.
WINDOWS = (
    (["alt+m"], "Memory Set Up", "memory"),
    (["alt+d"], "Display Set Up", "display"),
    (["alt+l"], "Limit Lines Set Up", "limits"),
    (["alt+o"], "Time Domain Options", "time-domain"),
    (item("alt+f", 4), "Add Label", "label"),
    (item("alt+f", 5), "Save Measurements", "save-measurements"),
    (item("alt+f", 6), "Load Touchstone Data", "load-measurements"),
    (item("alt+t", 0), "Calibration Kit Parameters", "kits"),
    (item("alt+t", 1), "Set Main Display Colours", "colours"),
    (item("alt+t", 2), "Hardware Information", "hardware"),
)


def visit(desk, keys, title, name):
    """Opens a window by the keyboard, takes it and closes it; what does not come is told, and the
    next one is taken all the same."""
    desk.wait_for(MAIN)
    desk.key(*keys)
    try:
        desk.wait_for(title)
    except AssertionError as error:
        print(f"{name}: {error}", file=sys.stderr)
        desk.key("Escape", "Escape")
        return
    time.sleep(1)
    take(desk, name, title)
    desk.key("Escape")
    desk.wait_gone(title)


def main():
    FOLDER.mkdir(exist_ok=True)
    desk = Desk("1800x900x24")
    try:
        with tempfile.TemporaryDirectory() as session:
            desk.start(sys.argv[1], session, "--demo")
            desk.wait("the end of the start", lambda: set(desk.windows()) == {MAIN, "Bench"})
            time.sleep(2)  # it takes its place beside the main window
            for keys, title, name in WINDOWS:
                visit(desk, keys, title, name)
            words = desk.words("Bench")
            desk.click(*map(round, words["Calibrate"]))
            desk.wait_for("Open Cal")
            take(desk, "prompt", "Open Cal")
            take(desk, "bench", "Bench")
            desk.program.terminate()
            desk.program.wait(DEADLINE)
    finally:
        desk.end()


if __name__ == "__main__":
    main()
