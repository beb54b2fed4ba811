#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Works the program's windows in a bare system by keys and mouse, as its user does: calibrates on the
simulated instrument and measures, saves a picture, opens the guide through Help.

usage: bare_desktop.py DISPLAY PID FOLDER
The program is there with its simulated instrument. FOLDER is its /tmp as it is seen from here."""

import pathlib
import sys
import time

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[1] / "tests" / "desktop"))

from desk import Desk, plain  # noqa: E402

MAIN = "QK47-20-09 VNA Control"
STATUS_ROWS = 32


def status(desk, text):
    desk.wait(f"{text!r} in the status bar",
              lambda: plain(text) in desk.text(MAIN, STATUS_ROWS), 300)


def main():
    display, pid, folder = sys.argv[1], int(sys.argv[2]), pathlib.Path(sys.argv[3])
    desk = Desk(display=display, pid=pid)
    desk.wait("the windows of the program", lambda: {MAIN, "Bench"} <= set(desk.windows()))
    desk.wait("the end of the start", lambda: set(desk.windows()) == {MAIN, "Bench"})
    status(desk, "Sweep Off")
    print("  the window is there")
    words = desk.words("Bench")
    desk.click(*map(round, words[plain("Calibrate")]))
    status(desk, "SWEEP ON")
    status(desk, "S11 Cal")
    time.sleep(2)
    desk.output("xdotool", "windowactivate", "--sync", desk.windows()[MAIN])
    desk.key("Escape")
    status(desk, "Sweep Off")
    print("  calibrated and measured in the window")

    desk.key("alt+f", "Down", "Down", "Down", "Return")
    desk.wait_for("Save Graphics")
    desk.type("/tmp/window.png")
    desk.key("Return")
    picture = folder / "window.png"
    desk.wait("the picture", lambda: picture.exists() and picture.stat().st_size > 5000)
    desk.wait_for(MAIN)
    print("  saved a picture from the window")

    desk.key("ctrl+s")
    desk.wait_for("Save Cal")
    desk.type("/tmp/window.cal")
    desk.key("Return")
    desk.wait("the session", lambda: (folder / "window.cal").exists())
    desk.wait_for(MAIN)
    print("  saved the session, so that another one replaces it without a question")

    desk.key("alt+h", "Return")
    desk.wait("the guide", lambda: "Help" in desk.windows())
    desk.wait("its contents", lambda:
              {plain("Calibrating"), plain("Glossary")} <= set(desk.words("Help")))
    desk.picture(str(folder / "guide.png"), "Help")
    desk.output("xdotool", "windowactivate", "--sync", desk.windows()["Help"])
    desk.key("Escape")
    desk.wait_gone("Help")
    print("  opened the guide through Help")


main()
