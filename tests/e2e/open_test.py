#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Files to open from the command line, and two programs over one folder."""

import os
import pathlib
import signal
import subprocess
import sys
import time

import programs

DATA = pathlib.Path(__file__).resolve().parents[1] / "data"
DEADLINE = programs.DEADLINE


class Open(programs.EndToEnd):
    def setUp(self):
        super().setUp()
        self.work = os.path.join(self.folder, "session")
        self.running = None
        self.addCleanup(self.stop)

    def stop(self):
        if self.running is not None:
            if self.running.poll() is None:
                self.running.kill()
            self.running.wait(DEADLINE)

    def command(self, *arguments):
        return [programs.VNA, "--folder", self.work, *arguments]

    def environment(self):
        runtime = os.path.join(self.folder, "runtime")
        os.makedirs(runtime, mode=0o700, exist_ok=True)
        return {**os.environ, "QT_QPA_PLATFORM": "offscreen", "XDG_RUNTIME_DIR": runtime}

    def start(self, *arguments):
        """The program in its windows, without a screen."""
        self.running = subprocess.Popen(
            self.command("--demo", "--pace", "fast", *arguments), env=self.environment(),
            stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)

    def again(self, *arguments):
        return subprocess.run(self.command("--demo", *arguments), env=self.environment(),
                              capture_output=True, text=True, timeout=DEADLINE, check=False,
                              stdin=subprocess.DEVNULL)

    def until_opened(self, *files):
        """Until the files used last are exactly these, the newest first."""
        recent = pathlib.Path(self.work) / "RecentFiles.txt"
        deadline = time.monotonic() + DEADLINE
        while True:
            told = recent.read_text(encoding="utf-8") if recent.exists() else ""
            places = [told.find(str(file)) for file in files]
            if all(place >= 0 for place in places) and places == sorted(places):
                return
            self.assertLess(time.monotonic(), deadline, told)
            self.assertIsNone(self.running.poll())
            time.sleep(0.05)

    def test_a_file_is_opened_at_the_start_and_by_the_running_program_of_the_folder(self):
        first = DATA / "ri_hz_one_parameter.s1p"
        second = DATA / "sessions" / "03-s11-calibrated.cal"
        self.start(str(first))
        self.until_opened(first)
        result = self.again(os.path.relpath(second))
        self.assertEqual(result.returncode, 0, result.stderr)
        self.assertIn(f"handed to the program that runs over {self.work} "
                      f"(process {self.running.pid})", result.stderr)
        self.until_opened(second, first)
        self.running.send_signal(signal.SIGTERM)
        self.assertEqual(self.running.wait(DEADLINE), 0)
        self.assertEqual(os.listdir(os.path.join(self.folder, "runtime")), [])
        self.assertFalse(os.path.exists(os.path.join(self.work, ".qk47-vna.lock")))

    def test_a_second_program_without_windows_is_refused_and_told_of_another_folder(self):
        first = self.front_panel("--demo", "--pace", "fast")
        first.run("wait ms 0")
        batch = os.path.join(self.folder, "batch.txt")
        for face in (("--console",), ("--scpi", "-"), ("--batch", batch)):
            result = self.again(*face)
            self.assertEqual(result.returncode, 2)
            self.assertEqual(
                result.stderr, f'qk47-vna: the folder "{self.work}" is in use by process '
                f'{first.process.pid}; give another one, for example --folder "{self.work}-2"\n')
            self.assertEqual(result.stdout, "")

    def test_a_killed_program_leaves_its_folder_free(self):
        first = self.front_panel("--demo", "--pace", "fast")
        first.run("wait ms 0")
        first.process.kill()
        first.process.wait(DEADLINE)
        self.assertEqual(self.again("--console").returncode, 0)

    def test_a_file_that_is_not_there_is_told(self):
        result = self.again("/no/such.cal")
        self.assertEqual(result.returncode, 2)
        self.assertEqual(result.stderr,
                         'qk47-vna: there is no file "/no/such.cal"\nTry qk47-vna --help.\n')

    def test_about_has_the_version_below_its_two_lines(self):
        version = subprocess.run([programs.VNA, "--version"], capture_output=True, text=True,
                                 check=True).stdout.strip().removeprefix("qk47-vna ")
        vna = self.front_panel("--demo", "--pace", "fast")
        vna.send("click Form1.About")
        self.assertEqual(vna.until_event("message "),
                         r"message VNA Control | QK47-20-09 VNA Control\nV1.62 Mar 09\n"
                         f"Program {version} | information | ok")
        vna.run("answer ok")


if __name__ == "__main__":
    sys.exit(programs.main(at_once=3))
