#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""The command line, scripts, and how the process ends."""

import os
import pathlib
import struct
import subprocess
import sys
import time

import programs
from programs import DEADLINE, EndToEnd

ROOT = pathlib.Path(__file__).resolve().parent.parent.parent


class CommandLine(EndToEnd):
    def finish(self, *arguments, text="", cwd=None):
        return subprocess.run([programs.VNA, *arguments], input=text, capture_output=True,
                              text=True, timeout=DEADLINE, cwd=cwd, check=False)

    def demo(self, *arguments):
        return self.front_panel("--demo", "--pace", "fast", *arguments)

    def test_a_bad_option_is_told_and_ends_with_2(self):
        result = self.finish("--loud")
        self.assertEqual(result.returncode, 2)
        self.assertEqual(result.stderr,
                         'qk47-vna: unknown option "--loud"\nTry qk47-vna --help.\n')
        self.assertEqual(result.stdout, "")

    def test_help_and_version(self):
        result = self.finish("--help")
        self.assertEqual(result.returncode, 0)
        self.assertIn("--com N=DEVICE", result.stdout)
        result = self.finish("--version")
        self.assertEqual(result.returncode, 0)
        self.assertRegex(result.stdout, r"^qk47-vna \d+\.\d+\.\d+ \(commit \w+(-changed)?, Qt 6\.\d+\.\d+\)\n$")

    def test_a_script_that_cannot_be_read_ends_with_2(self):
        result = self.finish("--console", "--demo", "--script", "/no/such/script")
        self.assertEqual(result.returncode, 2)
        self.assertIn('cannot read the script "/no/such/script"', result.stderr)

    def test_without_input_it_starts_and_ends(self):
        result = self.finish("--console", "--demo", "--pace", "fast", "--folder", self.folder)
        self.assertEqual(result.returncode, 0)
        self.assertIn("! panel 1 SN. 147\n", result.stdout)
        self.assertTrue(result.stdout.endswith("! exit 0\n"))

    def test_a_limit_on_the_size_of_files_is_told_and_ends_nothing(self):
        result = subprocess.run(
            ["bash", "-c", 'ulimit -f 1; exec "$0" "$@"', programs.VNA, "--console", "--demo",
             "--pace", "fast", "--folder", self.folder], input="answer ok\n", capture_output=True,
            text=True, timeout=DEADLINE, check=False)
        self.assertIn("RXCal.dat: cannot be written: File too large", result.stdout)
        self.assertEqual(result.returncode, 0, result.stdout)

    def test_a_fifo_in_the_place_of_its_files_does_not_hold_up_the_start(self):
        for name in ("RXCal.dat", "0147-log.txt"):
            os.mkfifo(os.path.join(self.folder, name))
        result = self.finish("--console", "--demo", "--pace", "fast", "--folder", self.folder,
                             text="answer ok\n")
        self.assertIn("RXCal.dat: is not an ordinary file", result.stdout)
        self.assertIn("! panel 3 Log: is not an ordinary file", result.stdout)
        self.assertEqual(result.returncode, 0)

    def test_quit_ends_at_once_in_the_middle_of_a_sweep(self):
        vna = self.demo()
        vna.run("click Form1.SetCal", "click Calibration.Command1", "set Calibration.Option3 on")
        for button in ("O_Cal", "S_Cal", "M_Cal"):
            vna.measure(f"Calibration.{button}", "Port 1")
        vna.run("click Calibration.App_Cal", "bench pace 115200")
        vna.send("click Form1.StartMeasurement")
        vna.run("wait sweeps 1")
        began = time.monotonic()
        vna.send("quit")
        self.assertEqual(vna.end_of_output(), ("! exit 0", 0))
        self.assertLess(time.monotonic() - began, 5)

    def test_exit_asks_first(self):
        vna = self.demo()
        number = vna.send("click Form1.Exit")
        self.assertEqual(vna.until_event("message "),
                         "message VNA Control Exit | Close Program and Exit? | none | yes/no")
        vna.run("answer no")
        self.assertIsNone(vna.until_closed(number).reason)
        vna.send("click Form1.Exit")
        vna.until_event("message ")
        vna.send("answer yes")
        self.assertEqual(vna.end_of_output(), ("! exit 0", 0))

    def test_it_sleeps_while_nothing_happens(self):
        vna = self.demo()
        vna.run("wait ms 0")
        before = self.processor_seconds(vna.process.pid)
        vna.run("wait ms 2000")
        self.assertLess(self.processor_seconds(vna.process.pid) - before, 0.5)

    def processor_seconds(self, pid):
        fields = pathlib.Path(f"/proc/{pid}/stat").read_text(encoding="ascii").split(")")[1].split()
        return (int(fields[11]) + int(fields[12])) / os.sysconf("SC_CLK_TCK")

    def test_the_install_folder_is_made(self):
        vna = self.demo()
        vna.run("wait ms 0")
        self.assertTrue(os.path.isdir(os.path.join(self.folder, "session")))

    def test_pictures_are_written_by_their_extension(self):
        vna = self.demo()
        for extension, start in (("png", b"\x89PNG"), ("bmp", b"BM"), ("jpg", b"\xff\xd8"),
                                 ("tif", b"II*\0")):
            path = os.path.join(self.folder, f"a picture.{extension}")
            vna.run(f"picture {path}")
            self.assertEqual(pathlib.Path(path).read_bytes()[:len(start)], start, extension)
        self.assertIn("Unknown Image Format", vna.refused("picture trace.txt"))
        vna.run("resize 640 480", f"picture {self.folder}/small.png")
        header = pathlib.Path(self.folder, "small.png").read_bytes()[:24]
        self.assertEqual(struct.unpack(">II", header[16:24]), (640, 480))

    def test_the_demonstration_script_runs_to_its_end(self):
        result = self.finish("--console", "--demo", "--pace", "fast", "--folder",
                             os.path.join(self.folder, "session"), "--script",
                             str(ROOT / "tools" / "demo.console"), cwd=self.folder)
        self.assertEqual(result.returncode, 0)
        self.assertNotIn("\nerror ", result.stdout)
        self.assertEqual(result.stdout.count("\n= "), 401)
        self.assertGreater(os.path.getsize(os.path.join(self.folder, "trace.png")), 5000)
        # The filter reflects nearly all far below its band and little at its middle.
        points = [line.split()[1:] for line in result.stdout.splitlines()
                  if line.startswith("= ")]
        magnitude = {round(float(f) / 1e6): abs(complex(float(re), float(im)))
                     for _, f, re, im in points}
        self.assertGreater(magnitude[3], 0.95)
        self.assertLess(min(m for f, m in magnitude.items() if 950 < f < 1050), 0.3)


if __name__ == "__main__":
    sys.exit(programs.main(at_once=3))
