#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""The real program on a desktop, worked by keys and mouse alone: every window opens, is reached by
the keyboard and closes as it should; messages are shown whole; nothing that is clicked while a
standard is measured is done afterwards.

usage: desktop_test.py QK47-VNA [unittest arguments]"""

import os
import pathlib
import shutil
import signal
import socket
import subprocess
import sys
import tempfile
import unittest

from desk import DEADLINE, Desk, plain

VNA = ""
MAIN = "QK47-20-09 VNA Control"
CALIBRATION = "Calibration"
# Keys from the main window, and the title of the window that they open.
WINDOWS = (
    (("alt+c",), CALIBRATION),
    (("alt+m",), "Memory Set Up"),
    (("alt+e",), "Enhancement Set Up"),
    (("alt+d",), "Display Set Up"),
    (("alt+k",), "Markers Set Up"),
    (("alt+l",), "Limit Lines Set Up"),
    (("alt+o",), "Time Domain Options"),
    (("alt+f", *["Down"] * 4, "Return"), "Add Label"),
    (("alt+f", *["Down"] * 5, "Return"), "Save Measurements"),
    (("alt+f", *["Down"] * 6, "Return"), "Load Touchstone Data"),
    (("alt+t", "Return"), "Calibration Kit Parameters"),
    (("alt+t", "Down", "Return"), "Set Main Display Colours"),
    (("alt+t", "Down", "Down", "Return"), "Hardware Information"),
    (("alt+t", *["Down"] * 4, "Return"), "EEPROM Back Up"),
    (("alt+t", *["Down"] * 5, "Return"), "Restore EEPROM"),
    (("alt+t", "Up", "Return"), "Remote Control"),
    (("alt+u", "Return"), "Signal Generator Mode"),
    (("alt+h", "Up", "Return"), "VNA Control"),
)
# What a menu item shows before there is a sweep and a calibration.
REFUSED = (
    (("alt+t", *["Down"] * 3, "Return"), "Diagnostic Tests", "Set Sweep First"),
    (("alt+u", "Down", "Return"), "P1dB Test", "No S21 Calibration"),
    (("alt+u", "Down", "Down", "Return"), "AM to PM Test", "No S21 Calibration"),
)
STATUS_ROWS = 32  # of pixels, at the foot of the main window


def float_windows(folder):
    """Set-up windows of that folder's program are windows of their own, not tabs beside the graphs."""
    with open(os.path.join(folder, "Windows.ini"), "w", encoding="utf-8") as file:
        file.write("[General]\nDocked=false\n")


class OnTheDesktop(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.mkdtemp(prefix="qk-desktop-")
        self.addCleanup(shutil.rmtree, self.folder, True)
        self.desk = Desk()
        self.addCleanup(self.desk.end)
        # Each window by its own title; the panel has tests of its own (tests/large_screen).
        os.mkdir(os.path.join(self.folder, "session"))
        float_windows(os.path.join(self.folder, "session"))
        self.desk.start(VNA, os.path.join(self.folder, "session"), "--demo")
        self.wait_for_start()

    def tearDown(self):
        failed = self._outcome.result.failures + self._outcome.result.errors
        if any(test is self for test, _ in failed):
            picture = pathlib.Path(tempfile.gettempdir()) / f"{self.id()}.png"
            self.desk.picture(str(picture))
            print(f"screen: {picture}", file=sys.stderr)

    def wait_for_start(self):
        """The instrument is loaded when the window that says so has gone and the last panel of the
        status bar is filled in."""
        self.desk.wait("the end of the start", lambda: set(self.desk.windows()) == {MAIN, "Bench"})
        self.desk.wait_for(MAIN)
        self.desk.wait("the status of the sweep",
                       lambda: plain("Sweep Off") in self.desk.text(MAIN, STATUS_ROWS))

    def box(self, title, text):
        """A message box is up, has the keyboard, and its whole text can be read."""
        self.desk.wait_for(title)
        self.assertIn(plain(text), self.desk.text(title))

    def press(self, window, word):
        """Clicks on a word of a window."""
        words = self.desk.words(window)
        self.assertIn(plain(word), words, f"in {window}")
        self.desk.click(*map(round, words[plain(word)]))

    def open_calibration(self):
        self.desk.key("alt+c")
        self.desk.wait_for(CALIBRATION)

    # ---- windows

    def test_each_set_up_window_opens_by_mouse_has_the_keyboard_and_closes_by_escape(self):
        for word, title in (("Calibration", CALIBRATION), ("Enhancement", "Enhancement Set Up"),
                            ("Display", "Display Set Up")):
            with self.subTest(title):
                self.press(MAIN, word)
                self.desk.wait_for(title)
                self.desk.key(*["Tab"] * 30)
                self.desk.settle()
                self.assertEqual(self.desk.active(), title, "Tab leads around inside the window")
                self.desk.key("Escape")
                self.desk.wait_gone(title)
                self.desk.wait_for(MAIN)

    def test_every_window_opens_by_the_keyboard_keeps_it_and_closes_by_escape(self):
        for keys, title in WINDOWS:
            with self.subTest(title):
                self.desk.key(*keys)
                self.desk.wait_for(title)
                self.desk.key(*["Tab"] * 25, *["shift+Tab"] * 5)
                self.desk.settle()
                self.assertEqual(self.desk.active(), title, "Tab leads around inside the window")
                self.desk.key("Escape")
                self.desk.wait_gone(title)
                self.desk.wait_for(MAIN)

    def test_what_cannot_be_opened_yet_says_why(self):
        for keys, title, text in REFUSED:
            with self.subTest(title):
                self.desk.key(*keys)
                self.box(title, text)
                self.desk.key("Return")
                self.desk.wait_gone(title)
                self.desk.wait_for(MAIN)

    def test_the_bench_may_be_closed_and_comes_back_from_its_menu(self):
        self.desk.output("xdotool", "windowactivate", "--sync", self.desk.windows()["Bench"])

        def closed():
            # The window manager misses the first key that it is given, now and then.
            if self.desk.active() == "Bench":
                self.desk.key("alt+F4")
                self.desk.settle()
            return "Bench" not in self.desk.windows()

        self.desk.wait("the bench to close", closed)
        self.assertIsNone(self.desk.program.poll())
        self.press(MAIN, "Bench")
        self.desk.wait("the bench", lambda: "Bench" in self.desk.windows())

    # ---- messages

    def test_start_without_a_calibration_is_told_and_any_key_of_a_box_closes_it(self):
        for key in ("Return", "Escape", "space"):
            with self.subTest(key):
                self.desk.key("F5")
                self.box("Start Measurement", "No Calibration")
                self.desk.key(key)
                self.desk.wait_gone("Start Measurement")
                self.desk.wait_for(MAIN)

    def test_escape_and_the_close_control_answer_the_question_of_exit_with_no(self):
        for no in (["Escape"], ["alt+F4"], ["Tab", "Return"]):
            with self.subTest(no):
                self.desk.key("alt+f", "e")
                self.box("VNA Control Exit", "Close Program and Exit?")
                self.desk.key(*no)
                self.desk.wait_gone("VNA Control Exit")
                self.desk.wait_for(MAIN)
                self.assertIsNone(self.desk.program.poll())
        self.desk.key("alt+f", "e")
        self.desk.wait_for("VNA Control Exit")
        self.desk.key("Return")
        self.assertEqual(self.desk.program.wait(DEADLINE), 0)

    def test_a_save_that_fails_behind_the_overwrite_question_is_told_and_a_key_closes_it(self):
        folder = os.path.join(self.folder, "session")
        pathlib.Path(folder, "a.cal").touch()
        os.makedirs(os.path.join(folder, ".a.cal.saving", "in the way"))

        def active():
            return self.desk.output("xdotool", "getactivewindow").strip()

        for yes in (["Left", "Return"], ["Tab", "space"], ["alt+y"]):
            with self.subTest(yes):
                self.desk.key("alt+f", "s")
                self.desk.wait_for("Save Cal")
                seen = {"", active()}
                self.desk.type("a.cal")
                self.desk.key("Return")
                self.desk.wait("the question", lambda: active() not in seen)
                seen.add(active())
                self.desk.key(*yes)
                self.desk.wait("the message", lambda: active() not in seen
                               and self.desk.active() == "Save Cal")
                self.until_read("Save Cal", "cannot be written")
                self.desk.key("Return")
                self.desk.wait_gone("Save Cal")
                self.desk.wait_for(MAIN)

    # ---- remote control

    def test_remote_control_is_switched_on_by_keys_shows_its_client_and_off_by_mouse(self):
        remote = "Remote Control"
        self.desk.key("alt+t", "Up", "Return")
        self.desk.wait_for(remote)
        with socket.create_server(("127.0.0.1", 0)) as free:
            port = free.getsockname()[1]
        self.desk.key("alt+p")
        self.desk.type(str(port))
        self.desk.key("Return")
        self.until_read(remote, f"127.0.0.1:{port}, no client")
        with socket.create_connection(("127.0.0.1", port), timeout=DEADLINE) as client:
            replies = client.makefile("rb")
            client.sendall(b"*IDN?\nVOLTS 5\n")
            self.assertTrue(replies.readline().startswith(b"QK47,QK47-20-09,"))
            self.until_read(remote, "1 client")
            self.until_read(remote, "-113")
            self.assertIn(plain("VOLTS"), self.desk.words(remote))
            self.desk.wait("the mark of a client in the status bar", lambda:
                           plain("Remote") in self.desk.text(MAIN, STATUS_ROWS))
            # What a client changes is shown in the main window at once.
            client.sendall(b"CALC:PAR1:DEF S22;:CALC:TRAC1:FORM PHAS;*OPC?\n")
            self.assertEqual(replies.readline(), b"1\n")
            self.desk.wait("the client's channel", lambda:
                           {plain("S22"), plain("Phase")} <= set(self.desk.words(MAIN)))
            self.press(remote, "Off")
            self.assertEqual(replies.readline(), b"", "switching off closes the connection")
        self.desk.wait("no mark of a client", lambda:
                       plain("Remote") not in self.desk.text(MAIN, STATUS_ROWS))
        with self.assertRaises(OSError):
            socket.create_connection(("127.0.0.1", port), timeout=5)
        self.desk.key("Escape")
        self.desk.wait_gone(remote)
        self.desk.wait_for(MAIN)

    # ---- standards

    def begin_open(self, points="101"):
        """The kind S11, and the prompt for its open."""
        self.open_calibration()
        if points != "101":
            self.press(CALIBRATION, "101")
            self.desk.key(points[0], "Return")
        self.press(CALIBRATION, "Apply")
        # The level is the last that is shown when the sweep has been loaded.
        self.desk.wait("the sweep to be loaded",
                       lambda: plain("P1 Level") in self.desk.text(MAIN, STATUS_ROWS))
        self.desk.settle()
        self.press(CALIBRATION, "S11")
        self.desk.key("alt+o")  # the word is in the list of steps, too
        self.box("Open Cal", "Open Circuit on Port 1 (0.00mm)")

    def test_a_prompt_to_connect_is_answered_by_ok_alone(self):
        self.begin_open()
        self.desk.key("Escape", "alt+F4")
        self.desk.settle()
        self.assertIn("Open Cal", self.desk.windows())
        self.desk.key("Return")
        self.desk.wait_gone("Open Cal")

    def test_what_is_clicked_and_typed_while_a_standard_is_measured_is_dropped(self):
        self.begin_open("801")
        left, top, width, height = self.desk.place(CALIBRATION)
        # All of it in one go behind the answer, while the sweep runs.
        # Neither Escape nor the button Cancel, which do end a sweep.
        self.desk.storm("Return", [(left + width * column // 6, top + height * row // 6)
                                   for row in range(1, 6) for column in (1, 3, 5)],
                        ["Return", "space", "alt+a"])
        self.desk.wait_gone("Open Cal")
        self.desk.wait("the open to be measured",
                       lambda: "Short" in self.desk.words(CALIBRATION)
                       and "Measuring" not in self.desk.words(CALIBRATION))
        self.desk.settle()
        self.assertEqual(set(self.desk.windows()), {MAIN, CALIBRATION, "Bench"})
        self.assertIn(plain("Still to measure: Short, Load"), self.desk.text(CALIBRATION))

    # ---- the EEPROM

    def until_read(self, title, text):
        """Until a window of that title has the keyboard and the text can be read there."""
        self.desk.wait(f"{text!r} in {title!r}",
                       lambda: self.desk.active() == title and plain(text) in self.desk.text())

    def choose_file(self, title, path):
        self.until_read(title, "Look in")
        self.desk.type(path)
        self.desk.key("Return")

    def test_a_click_on_exit_in_the_middle_of_a_restore_is_told_and_the_window_stays(self):
        path = os.path.join(self.folder, "factory.bak")
        self.desk.key("alt+t", "b")
        self.desk.wait_for("EEPROM Back Up")
        self.desk.key("Return")
        self.box("Eeprom Backup", "This will create a copy of EEPROM data")
        self.desk.key("Return")
        self.choose_file("EEPROM Back Up", path)
        self.desk.wait_gone("EEPROM Back Up")
        self.desk.wait_for(MAIN)
        self.desk.key("alt+t", "r")
        self.until_read("Restore EEPROM", "Writes a file")
        self.desk.key("alt+s")
        self.until_read("Restore EEPROM", "This will restore")
        self.desk.key("alt+y")  # Enter answers No
        self.choose_file("Restore EEPROM", path)
        self.until_read("Restore EEPROM", "Data appears valid")
        self.desk.key("alt+y")
        self.until_read("Restore EEPROM", "Writes a file")
        self.press("Restore EEPROM", "Abort")
        self.until_read("Restore EEPROM", "Cannot Interrupt")
        self.desk.key("Return")
        self.until_read("Restore EEPROM", "Writes a file")
        self.desk.program.kill()  # it would write for minutes

    # ---- the whole of it

    def test_the_demonstration_calibrates_and_measures_and_a_signal_ends_the_sweep(self):
        self.press("Bench", "Calibrate")
        self.desk.wait("the sweep", seconds=4 * DEADLINE, condition=lambda:
                       plain("SWEEP ON") in self.desk.text(MAIN, STATUS_ROWS))
        self.assertIn(plain("S11 Cal"), self.desk.text(MAIN, STATUS_ROWS))
        # Escape closes the window that has the keyboard, and stops nothing as long as it is held.
        self.press(MAIN, "Display")
        self.desk.wait_for("Display Set Up")
        self.desk.hold("Escape", 1.5)
        self.desk.wait_gone("Display Set Up")
        # A window that opens and closes behind the held key: all its repeats have been handled then.
        self.press(MAIN, "Display")
        self.desk.wait_for("Display Set Up")
        self.desk.key("Escape")
        self.desk.wait_gone("Display Set Up")
        self.assertIn(plain("SWEEP ON"), self.desk.text(MAIN, STATUS_ROWS))
        self.desk.program.send_signal(signal.SIGTERM)
        self.assertEqual(self.desk.program.wait(DEADLINE), 0)


class WithoutADesktop(unittest.TestCase):
    def test_no_screen_is_told_in_one_line(self):
        for display in ({}, {"DISPLAY": ":97"}):
            environment = {name: value for name, value in os.environ.items()
                           if name not in ("DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM")}
            result = subprocess.run([VNA, "--demo"], env={**environment, **display}, text=True,
                                    capture_output=True, timeout=DEADLINE, check=False)
            self.assertEqual(result.returncode, 2)
            self.assertRegex(result.stderr, r"^qk47-vna: there is no screen .*--console.*\n$")
            self.assertEqual(result.stderr.count("\n"), 1)


if __name__ == "__main__":
    VNA = sys.argv[1]
    unittest.main(argv=[sys.argv[0], *sys.argv[2:]], verbosity=2)
