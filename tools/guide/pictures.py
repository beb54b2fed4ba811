#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Makes the pictures of the manual from the program as it is: on a desktop of its own the windows
are opened by the keyboard and taken, in a session that session.console prepares.

usage: tools/guide/pictures.py QK47-VNA     (writes docs/manual/pictures/*.png)

Needs what tests/desktop/run installs."""

import pathlib
import subprocess
import sys
import tempfile
import time

HERE = pathlib.Path(__file__).resolve().parent
ROOT = HERE.parent.parent
sys.path.insert(0, str(ROOT / "tests" / "desktop"))

from desk import DEADLINE, Desk  # noqa: E402

MAIN = "QK47-20-09 VNA Control"
ISOLATION = "Isolation Calibration (optional step)"
FOLDER = ROOT / "docs" / "manual" / "pictures"


def take(desk, name, window):
    """A window without its frame; few colours are enough."""
    time.sleep(1)
    path = str(FOLDER / f"{name}.png")
    desk.picture(path, window)
    desk.output("mogrify", "-strip", "+dither", "-colors", "64", "-define",
                "png:compression-level=9", path)
    print(f"{name}.png")


def item(menu, row):
    """The keys that choose a row of a menu."""
    return [menu, "Home", *["Down"] * row, "Return"]


def close(desk, window, keys=("Escape",)):
    desk.key(*keys)
    desk.wait_gone(window)


# The keys on the main window, the title of the window that opens, the name of its picture, and the
# keys in it before it is taken.
WINDOWS = (
    (["alt+m"], "Memory Set Up", "memory"),
    (["alt+e"], "Enhancement Set Up", "enhancement"),
    (["alt+d"], "Display Set Up", "display"),
    (["alt+k"], "Markers Set Up", "markers"),
    (["alt+l"], "Limit Lines Set Up", "limits"),
    (["alt+o"], "Time Domain Options", "time-domain"),
    (item("alt+f", 4), "Add Label", "label"),
    (item("alt+f", 5), "Save Measurements", "save-measurements"),
    (item("alt+f", 6), "Load Touchstone Data", "load-measurements"),
    (item("alt+f", 8), "Report", "report"),
    (item("alt+f", 9), "Compare Sessions", "compare-sessions"),
    (item("alt+v", 8), "Marker Table", "marker-table"),
    (item("alt+t", 1), "Set Main Display Colours", "colours"),
    (item("alt+t", 2), "Hardware Information", "hardware"),
    (item("alt+t", 4), "EEPROM Back Up", "back-up"),
    (item("alt+t", 5), "Restore EEPROM", "restore"),
    (item("alt+t", 8), "Remote Control", "remote-control", "alt+n"),
    (item("alt+u", 0), "Signal Generator Mode", "signal-generator", "alt+a"),
    (item("alt+u", 6), "Batch", "batch"),
)


def visit(desk, keys, title, name, *before):
    desk.wait_for(MAIN)
    desk.key(*keys)
    desk.wait_for(title)
    desk.key(*before)
    take(desk, name, title)
    close(desk, title)


def answer(desk, title):
    """A prompt to connect something: the bench connects it."""
    desk.wait_for(title)
    desk.key("Return")
    desk.wait_gone(title)


def take_main(desk):
    """The main window behind a sweep or two."""
    desk.key("alt+s")
    time.sleep(15)
    desk.key("Escape")
    time.sleep(5)
    take(desk, "main", MAIN)


def take_kits(desk):
    desk.key(*item("alt+t", 0))
    desk.wait_for("Calibration Kit Parameters")
    take(desk, "kits", "Calibration Kit Parameters")
    desk.key("alt+e")
    desk.wait_for("Cal Kit Editor")
    take(desk, "kit-editor", "Cal Kit Editor")
    close(desk, "Cal Kit Editor")
    close(desk, "Calibration Kit Parameters")


def take_trace_markers(desk):
    """The number of marker 1 stands in the middle of the upper graph, a little below the trace."""
    title = "Trace Markers"
    left, top, width, _ = desk.place(MAIN)
    across = left + 6 + round(0.4075 * (width - 169))  # the set-up column takes 163 at the right
    for down in range(top + 100, top + 124, 4):
        desk.output("xdotool", "mousemove", str(across), str(down), "click", "3")
        time.sleep(0.5)
        if title in desk.windows():
            break
    desk.wait_for(title)
    take(desk, "trace-markers", title)
    close(desk, title)


def take_diagnostics(desk):
    title = "Hardware Diagnostics"
    desk.wait_for(MAIN)
    desk.key(*item("alt+t", 3))
    desk.wait_for(title)
    desk.key("alt+s")
    answer(desk, "Diagnostics")
    desk.wait("the second prompt", lambda: "Diagnostics" in desk.windows())
    answer(desk, "Diagnostics")
    time.sleep(10)
    take(desk, "diagnostics", title)
    close(desk, title)


def take_power_test(desk, row, title, through, test, name):
    desk.wait_for(MAIN)
    desk.key(*item("alt+u", row))
    desk.wait_for(title)
    desk.key("alt+c")
    answer(desk, through)
    time.sleep(10)
    desk.key("alt+s")
    answer(desk, test)
    time.sleep(10)
    take(desk, name, title)
    close(desk, title)


def take_calibration(desk):
    """The window, the methods of isolation of its insertable kind, and a prompt, which stays."""
    desk.wait_for(MAIN)
    desk.key("alt+c")
    desk.wait_for("Calibration")
    take(desk, "calibration", "Calibration")
    desk.key("alt+d", "alt+i")
    desk.wait_for(ISOLATION)
    take(desk, "isolation", ISOLATION)
    close(desk, ISOLATION, ("alt+c",))
    desk.wait_for("Calibration")
    desk.key("alt+o")
    desk.wait_for("Open Cal")
    take(desk, "prompt", "Open Cal")


def connect_amplifier(desk):
    desk.output("xdotool", "windowactivate", "--sync", desk.windows()["Bench"])
    desk.key("alt+d", "a", "m", "Return")
    desk.output("xdotool", "windowactivate", "--sync", desk.windows()[MAIN])
    desk.wait_for(MAIN)


def take_all(desk):
    desk.wait("the end of the start", lambda: set(desk.windows()) == {MAIN, "Bench"})
    take(desk, "bench", "Bench")
    take_main(desk)
    take_trace_markers(desk)
    take_kits(desk)
    for window in WINDOWS:
        visit(desk, *window)
    take_diagnostics(desk)
    connect_amplifier(desk)
    take_power_test(desk, 1, "P1dB Utility", "P1dB Calibration", "P1dB Test", "gain-compression")
    take_power_test(desk, 2, "AM to PM Utility", "AM to PM Test", "AM to PM Test", "am-to-pm")
    take_calibration(desk)


def main():
    FOLDER.mkdir(exist_ok=True)
    vna = sys.argv[1]
    desk = Desk("1700x850x24")
    try:
        with tempfile.TemporaryDirectory() as session:
            subprocess.run([vna, "--console", "--demo", "--pace", "fast", "--folder", session,
                            "--script", HERE / "session.console"], check=True,
                           stdout=subprocess.DEVNULL)
            # Each window for itself.
            pathlib.Path(session, "Windows.ini").write_text("[General]\nDocked=false\n", "utf-8")
            desk.start(vna, session, "--demo")
            take_all(desk)
            desk.program.terminate()
            desk.program.wait(DEADLINE)
    finally:
        desk.end()


if __name__ == "__main__":
    main()
