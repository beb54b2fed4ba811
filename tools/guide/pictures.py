#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Makes the pictures of the manual from the program as it is: on a desktop of its own the windows
are opened by the keyboard and taken, in a session that session.console prepares.

usage: tools/guide/pictures.py QK47-VNA [NAME...]     (writes docs/manual/pictures/*.png)

With names, only these pictures are written; the program is led through all windows all the same.
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
ONLY = set()


def item(menu, row):
    """The keys that choose a row of a menu."""
    return [menu, "Home", *["Down"] * row, "Return"]


# Windows that one set of keys opens: those keys on the main window, the title of the window that opens,
# the name of its picture, and the keys in it before it is taken. A window whose picture takes more is a
# function below. PICTURE_OF has the window's name in the program for each.
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
    (item("alt+v", 11), "Marker Table", "marker-table"),
    (item("alt+t", 1), "Set Main Display Colours", "colours"),
    (item("alt+t", 2), "Hardware Information", "hardware"),
    (item("alt+t", 4), "EEPROM Back Up", "back-up"),
    (item("alt+t", 5), "Restore EEPROM", "restore"),
    (item("alt+t", 8), "Remote Control", "remote-control", "alt+n"),
    (item("alt+u", 0), "Signal Generator Mode", "signal-generator", "alt+a"),
    (item("alt+u", 5), "Hints", "hints"),
    (item("alt+u", 6), "Batch", "batch", *"slash h o m e slash b e n c h slash F i l t e r s".split()),
)

# Every window of the program with its picture. A new window gets a line here and one of WINDOWS.
PICTURE_OF = {
    "Form1": "main", "Calibration": "calibration", "OpenCal": "open-cal", "ShortCal": "short-cal",
    "MatchCal": "load-cal", "ThruCalForm": "through-cal", "IsoMethod": "isolation",
    "DisplayPara": "display", "EnhancePara": "enhancement", "MemoryPara": "memory",
    "TDR_Opts": "time-domain", "MarkersSet": "markers", "AdjMarkers": "trace-markers",
    "MarkerTable": "marker-table", "NewLimitsSet": "limits", "LabelGraphics": "label",
    "SaveMeas": "save-measurements", "LoadMeas": "load-measurements", "Report": "report",
    "CompareSessions": "compare-sessions", "CalKitForm": "kits", "NewCalKit": "kit-editor",
    "SaveKit": "save-kit", "Colours": "colours", "HardwareInfo": "hardware",
    "DiagnosticsTests": "diagnostics", "EepromBk": "back-up", "EepromRest": "restore",
    "RemoteControl": "remote-control", "FreqGen": "signal-generator", "P1dBForm": "gain-compression",
    "AMtoPM": "am-to-pm", "CheckCal": "check-calibration", "SweepStats": "sweep-statistics",
    "Hints": "hints", "Batch": "batch"}
# Windows of one line of text that are up for a moment.
WITHOUT_PICTURE = {"EEPROMdata", "Updating", "SweepStopping", "ShuttingDown"}
# What is no window of the program, or a second picture of one.
OTHERS = ("bench", "prompt", "main-parts", "graph-menu", "docked", "help")


def names():
    """All pictures that this command makes."""
    return set(PICTURE_OF.values()) | set(OTHERS)


def take(desk, name, window, *more):
    """A window without its frame (None: the screen); few colours are enough. More: arguments of
    convert, before the colours are counted."""
    desk.settle()
    if ONLY and name not in ONLY:
        return
    path = str(FOLDER / f"{name}.png")
    desk.picture(path, window)
    desk.output("mogrify", *more, "-strip", "+dither", "-colors", "64", "-define",
                "png:compression-level=9", path)
    print(f"{name}.png", flush=True)


def close(desk, window, keys=("Escape",)):
    desk.key(*keys)
    desk.wait_gone(window)


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


def callouts(width, height):
    """Numbers on the main window; a place is counted from the right or from the foot when negative."""
    marks = ((300, 110), (-364, 84), (-24, 33), (-24, 220), (-24, 461), (-24, 562), (480, -14), (364, 10))
    words = []
    for number, (x, y) in enumerate(marks, 1):
        x, y = x % width, y % height
        words += ["-fill", "#004682", "-draw", f"circle {x},{y} {x + 12},{y}", "-fill", "white",
                  "-pointsize", "16", "-draw", f"text {x - 5},{y + 6} '{number}'"]
    return words


def take_main(desk):
    """The main window behind a sweep."""
    desk.key("F6")
    take(desk, "main", MAIN)
    _, _, width, height = desk.place(MAIN)
    take(desk, "main-parts", MAIN, "-font", "DejaVu-Sans-Bold", *callouts(width, height))


def take_graph_menu(desk):
    """The menu of the upper graph, with the part of the window around it."""
    left, top, _, _ = desk.place(MAIN)
    desk.output("xdotool", "mousemove", str(left + 250), str(top + 150), "click", "3")
    time.sleep(2)  # a busy machine paints the menu late
    take(desk, "graph-menu", None, "-crop", f"640x420+{left}+{top}", "+repage")
    desk.key("Escape")
    desk.wait_for(MAIN)


def take_help(desk):
    desk.key("F1")
    desk.wait_for("Help")
    take(desk, "help", "Help")
    close(desk, "Help")


def take_kits(desk):
    title = "Calibration Kit Parameters"
    desk.key(*item("alt+t", 0))
    desk.wait_for(title)
    take(desk, "kits", title)
    desk.key("alt+e")
    desk.wait_for("Cal Kit Editor")
    take(desk, "kit-editor", "Cal Kit Editor")
    close(desk, "Cal Kit Editor")
    desk.wait_for(title)
    desk.key("alt+s")
    desk.wait("the window to save a kit", lambda: desk.active() not in (title, ""))
    saving = desk.active()
    take(desk, "save-kit", saving)
    close(desk, saving)
    close(desk, title)


def take_trace_markers(desk):
    """The number of marker 1 is in the middle of the upper graph, a little below the trace."""
    title = "Trace Markers"
    left, top, width, _ = desk.place(MAIN)
    across = left + 6 + round(0.4075 * (width - 169))  # the set-up column takes 163 at the right
    for down in range(top + 100, top + 124, 4):
        desk.output("xdotool", "mousemove", str(across), str(down), "click", "3")
        time.sleep(2)  # a busy machine paints the menu late
        if title in desk.windows():
            break
        desk.key("Escape")  # the menu of the graph
    desk.wait_for(title)
    take(desk, "trace-markers", title)
    close(desk, title)


def take_check(desk):
    """A check by three standards, which the bench connects, with its first point of a trend."""
    title = "Check Calibration"
    desk.wait_for(MAIN)
    desk.key(*item("alt+u", 3))
    desk.wait_for(title)
    desk.key("alt+c")
    for prompt in ("Open Circuit", "Short Circuit", "Matched Load"):
        del prompt
        desk.wait("a prompt", lambda: desk.windows().keys() >= {title} and len(desk.windows()) > 3)
        desk.settle()
        desk.key("Return")
        desk.settle()
    take(desk, "check-calibration", title)
    close(desk, title)


def take_statistics(desk):
    title = "Sweep Statistics"
    desk.wait_for(MAIN)
    desk.key(*item("alt+u", 4))
    desk.wait_for(title)
    desk.key("alt+s")
    take(desk, "sweep-statistics", title)
    close(desk, title)


def take_diagnostics(desk):
    title = "Hardware Diagnostics"
    desk.wait_for(MAIN)
    desk.key(*item("alt+t", 3))
    desk.wait_for(title)
    desk.key("alt+s")
    for _ in range(2):  # two prompts of one title, one right behind the other
        desk.wait_for("Diagnostics")
        desk.settle()
        desk.key("Return")
        desk.settle()
    take(desk, "diagnostics", title)
    close(desk, title)


def take_power_test(desk, row, title, through, test, name):
    desk.wait_for(MAIN)
    desk.key(*item("alt+u", row))
    desk.wait_for(title)
    desk.key("alt+c")
    answer(desk, through)
    desk.settle()
    desk.key("alt+s")
    answer(desk, test)
    take(desk, name, title)
    close(desk, title)


def take_calibration(desk):
    """The window, the windows of its two 12 term kinds, and a prompt, which stays."""
    desk.wait_for(MAIN)
    desk.key("alt+c")
    desk.wait_for("Calibration")
    take(desk, "calibration", "Calibration")
    desk.key("alt+1")
    for key, title, name in (("alt+o", "Open Cal", "open-cal"), ("alt+s", "Short Cal", "short-cal"),
                             ("alt+l", "Load Cal", "load-cal"), ("alt+h", "Through Cal", "through-cal")):
        desk.key(key)
        desk.wait_for(title)
        take(desk, name, title)
        desk.key("Escape")
        desk.settle()
        if title in desk.windows():  # the question whether to leave it
            desk.key("alt+y")
        desk.wait_gone(title)
        desk.wait_for("Calibration")
    desk.key("alt+2")
    desk.settle()
    desk.key("alt+y")  # the question before the stars are dropped
    desk.settle()
    desk.key("alt+i")
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
    take_graph_menu(desk)
    take_help(desk)
    take_trace_markers(desk)
    take_kits(desk)
    for window in WINDOWS:
        visit(desk, *window)
    take_check(desk)
    take_statistics(desk)
    take_diagnostics(desk)
    connect_amplifier(desk)
    take_power_test(desk, 1, "P1dB Utility", "P1dB Calibration", "P1dB Test", "gain-compression")
    take_power_test(desk, 2, "AM to PM Utility", "AM to PM Test", "AM to PM Test", "am-to-pm")
    take_calibration(desk)


def take_docked(desk):
    """A set-up window beside the graphs."""
    desk.wait("the end of the start", lambda: set(desk.windows()) == {MAIN, "Bench"})
    desk.key("alt+d")
    desk.settle()
    take(desk, "docked", MAIN)


def run(desk, vna, session, docked):
    pathlib.Path(session, "Windows.ini").write_text(f"[General]\nDocked={docked}\n", "utf-8")
    desk.start(vna, session, "--demo", "--pace", "fast")


def main():
    FOLDER.mkdir(exist_ok=True)
    vna = str(pathlib.Path(sys.argv[1]).resolve())
    ONLY.update(sys.argv[2:])
    if ONLY - names():
        sys.exit(f"no such picture: {', '.join(sorted(ONLY - names()))}")
    desk = Desk("1700x850x24")
    try:
        with tempfile.TemporaryDirectory() as session:
            through = "".join(f"{3 + 30.77 * i:.4f} 0 0 1 0 1 0 0 0\n" for i in range(101))
            pathlib.Path(session, "through.dat").write_text(through, "utf-8")
            subprocess.run([vna, "--console", "--demo", "--pace", "fast", "--folder", session,
                            "--script", HERE / "session.console"], check=True, cwd=session,
                           stdout=subprocess.DEVNULL)
            for docked, pictures in (("false", take_all), ("true", take_docked)):
                run(desk, vna, session, docked)
                pictures(desk)
                desk.program.terminate()
                desk.program.wait(DEADLINE)
                desk.program.stderr.close()
    finally:
        desk.end()


if __name__ == "__main__":
    main()
