#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""What leaves the program, read by others: CSV and both versions of Touchstone by scikit-rf, pictures
and reports by poppler's tools, a batch by its files, also after a hundred kills."""

import cmath
import concurrent.futures
import csv
import math
import os
import pathlib
import random
import shutil
import subprocess
import sys
import time
import warnings

import programs
from programs import EndToEnd

with warnings.catch_warnings():
    warnings.simplefilter("ignore")
    import numpy
    import skrf

PARAMETERS = ("S11", "S21", "S12", "S22")
POINTS = 51


class WithoutOrder:
    """A file for scikit-rf, which does not know the keyword [Two-Port Data Order] that version 2
    demands; 21_12 is what it takes for granted."""

    def __init__(self, path):
        self.name = str(path)
        text = pathlib.Path(path).read_text(encoding="utf-8")
        assert "[Two-Port Data Order] 21_12\n" in text
        self.lines = [line for line in text.splitlines(keepends=True)
                      if not line.startswith("[Two-Port Data Order]")]

    def readline(self):
        return self.lines.pop(0) if self.lines else ""

    def close(self):
        pass


def touchstone(source):
    """scikit-rf's network of a file, {hertz: {parameter: value}}."""
    with warnings.catch_warnings():
        warnings.simplefilter("ignore")  # it leaves files open
        file = skrf.Touchstone(source)
    hertz, s = file.get_sparameter_arrays()
    ports = s.shape[1]
    return {f: {f"S{i + 1}{j + 1}": s[k, i, j] for i in range(ports) for j in range(ports)}
            for k, f in enumerate(hertz)}


class Results(EndToEnd):
    # In memory where it may be: a batch brings each file to the disk, and a busy disk takes its time.
    PLACE = "/dev/shm" if os.access("/dev/shm", os.W_OK) else None

    def measured(self, *device):
        """A calibrated program that has measured a device once; S21 on channel 1 with limits of -3
        to -1 dB, a marker."""
        vna = self.front_panel("--demo", "--pace", "fast")
        vna.run("wait ms 0", "bench follow on", "click Form1.SetCal", "set Calibration.Text1 100",
                "set Calibration.Text2 3000", f"set Calibration.PntsCombo {POINTS}",
                "click Calibration.Command1", "set Calibration.Option5 on")
        for button in ("O_Cal", "S_Cal", "M_Cal", "Thru_Cal"):
            vna.measure(f"Calibration.{button}", "")
        isolation = vna.send("click Calibration.Iso_Cal")
        vna.until_event("show IsoMethod")
        vna.run("click IsoMethod.Command1")
        self.assertIsNone(vna.until_closed(isolation).reason)
        vna.run("click Calibration.App_Cal", "click Calibration.Cls_Cal", "bench follow off",
                "click Form1.SetDisplay", "set DisplayPara.ListParameters S21",
                "click DisplayPara.ApplyDisplay", "click DisplayPara.CloseDisplayPara",
                "click Form1.LimiLines", "set NewLimitsSet.Text1 100", "set NewLimitsSet.Text2 3000",
                "set NewLimitsSet.Text3 -1", "set NewLimitsSet.Text4 -3",
                "click NewLimitsSet.Command2", "set NewLimitsSet.Check1 on",
                "set NewLimitsSet.Check37 on", "click NewLimitsSet.Command1",
                "click Form1.Cursors", "set MarkersSet.Option1 on", "set MarkersSet.Check1 on",
                "click MarkersSet.Command2", "click MarkersSet.Command1", *device)
        start = vna.send("click Form1.StartMeasurement")
        vna.run("wait sweeps 1", "click Form1.StopMeasurement", "wait idle")
        self.assertIsNone(vna.until_closed(start).reason)
        return vna

    def path(self, name):
        return os.path.join(self.folder, name)

    def test_scikit_rf_reads_what_was_measured(self):
        vna = self.measured("bench filter")
        vna.run(f"save touchstone all {self.path('one.s2p')}",
                f"save touchstone2 all {self.path('two.s2p')}",
                f"save touchstone2 S22 {self.path('two.s1p')}",
                f"save csv all re,im,dB,deg {self.path('table.csv')}")
        truth = {p: vna.corrected(p) for p in PARAMETERS}
        one = touchstone(self.path("one.s2p"))
        with self.assertRaisesRegex(ValueError, "two-port"):  # Debian's scikit-rf, 0.15.4
            touchstone(self.path("two.s2p"))
        two = touchstone(WithoutOrder(self.path("two.s2p")))
        port = touchstone(self.path("two.s1p"))
        table = numpy.genfromtxt(self.path("table.csv"), delimiter=",", names=True, comments="#",
                                 skip_header=self.remarks("table.csv"))
        network = skrf.Network(
            f=table["freq_Hz"], f_unit="hz", z0=50,
            s=numpy.stack([numpy.stack([table[f"S{i}{j}_re"] + 1j * table[f"S{i}{j}_im"]
                                        for j in (1, 2)], axis=1) for i in (1, 2)], axis=1))
        self.assertEqual([len(one), len(two), len(port), len(table)], [POINTS] * 4)
        for p in PARAMETERS:
            i, j = int(p[1]) - 1, int(p[2]) - 1
            for k, (hertz, value) in enumerate(truth[p]):
                self.assertLess(abs(two[hertz][p] - value), 1e-9)
                self.assertLess(abs(network.s[k, i, j] - value), 1e-9)
                self.assertEqual(network.f[k], hertz)
                self.assertLess(abs(table[f"{p}_dB"][k] - 20 * math.log10(abs(value))), 1e-9)
                self.assertLess(abs(table[f"{p}_deg"][k] - math.degrees(cmath.phase(value))), 1e-9)
                # Version 1 has five decimals of the magnitude and two of the angle.
                rounded = one[min(one, key=lambda f, hz=hertz: abs(f - hz))][p]
                self.assertLess(abs(abs(rounded) - abs(value)), 0.6e-5)
                self.assertLess(abs(rounded - value), 0.6e-5 + abs(value) * math.radians(0.0051))
        for hertz, value in truth["S22"]:
            self.assertLess(abs(port[hertz]["S11"] - value), 1e-9)
        self.version_1_is_its_text(one)

    def test_touchstone_1_is_the_same_from_the_window_and_from_the_text_front_panel(self):
        vna = self.measured("bench filter")
        vna.run(f"save touchstone all {self.path('console.s2p')}",
                "click Form1.SaveMeasurements", "set SaveMeas.Option3 on",
                *(f"set SaveMeas.Check{n} on" for n in range(1, 5)))
        save = vna.send("click SaveMeas.Command1")
        vna.until_event("dialog save")
        vna.run(f"answer {self.path('window.s2p')}")
        self.assertIsNone(vna.until_closed(save).reason)
        vna.run(f"save report {self.path('report.pdf')}")
        lines = [pathlib.Path(self.path(name)).read_bytes().split(b"\r\n")
                 for name in ("window.s2p", "console.s2p", "report.s2p")]
        # "! ", the comment, which is one blank until one is typed, two blanks, date and time.
        for head in (text.pop(0) for text in lines):
            self.assertRegex(head.decode(), r"^!    \S+  \S+$")
        self.assertEqual(lines[1], lines[0])
        self.assertEqual(lines[2], lines[0])

    def test_repeated_sweeps_are_a_table_that_names_its_outliers(self):
        vna = self.measured("bench attenuator 10")
        vna.run("bench step 0.3 after 8", "click Form1.SweepStats", "set SweepStats.Sweeps 10")
        start = vna.send("click SweepStats.Start")
        self.assertIsNone(vna.until_closed(start).reason)
        save = vna.send("click SweepStats.Save")
        vna.until_event("dialog save")
        vna.run(f"answer {self.path('repeats.csv')}")
        self.assertIsNone(vna.until_closed(save).reason)
        lines = pathlib.Path(self.path("repeats.csv")).read_text(encoding="utf-8").splitlines()
        self.assertIn("# Statistics: 10 of 10 sweeps", lines)
        self.assertIn("# Outliers: 9, 10, counted", lines)
        table = numpy.genfromtxt(self.path("repeats.csv"), delimiter=",", names=True, comments="#",
                                 skip_header=self.remarks("repeats.csv"))
        self.assertEqual(len(table), POINTS)
        network = skrf.Network(f=table["freq_Hz"], f_unit="hz", z0=50,
                               s=table["S21_mean_re"] + 1j * table["S21_mean_im"])
        console = [list(map(float, line.split()))[1:] for line in vna.run("data statistics S21")]
        for k, (re, im, s, of_mean, var_re, var_im, cov) in enumerate(console):
            self.assertAlmostEqual(network.s[k, 0, 0], complex(re, im), delta=1e-12)
            self.assertAlmostEqual(table["S21_s"][k], s, delta=1e-12)
            self.assertAlmostEqual(of_mean, s / math.sqrt(10), delta=1e-12)
            self.assertAlmostEqual(s * s, var_re + var_im, delta=1e-15)
            self.assertLessEqual(cov * cov, var_re * var_im * 1.000001)
            # Two of ten sweeps lie apart by 0.3 dB of 0.316.
            self.assertAlmostEqual(s, 0.316 * 0.0351 * math.sqrt(1.6 / 9), delta=4e-4)
        vna.run("click SweepStats.LeaveOut")
        self.assertEqual(vna.run("get SweepStats.State"), ["10 of 10 sweeps, 2 left out"])

    def remarks(self, name):
        lines = pathlib.Path(self.path(name)).read_text(encoding="utf-8").splitlines()
        return next(i for i, line in enumerate(lines) if not line.startswith("#"))

    def version_1_is_its_text(self, network):
        """scikit-rf's values of version 1 are those of the text, to 1e-9."""
        rows = [line.split() for line in
                pathlib.Path(self.path("one.s2p")).read_text(encoding="utf-8").splitlines()
                if line and line[0] not in "!#"]
        self.assertEqual(len(rows), POINTS)
        for (values, row) in zip(network.values(), rows):
            for k, p in enumerate(PARAMETERS):
                value = cmath.rect(float(row[1 + 2 * k]), math.radians(float(row[2 + 2 * k])))
                self.assertLess(abs(values[p] - value), 1e-9)

    def test_pictures_and_reports_hold_no_pixels(self):
        vna = self.measured("bench attenuator 2")
        vna.run(f"save picture {self.path('p.svg')}", f"save picture {self.path('p.pdf')}",
                f"save report {self.path('r.pdf')}")
        svg = pathlib.Path(self.path("p.svg")).read_text(encoding="utf-8")
        self.assertNotIn("<image", svg)
        self.assertIn("S21 LogMag", svg)
        self.assertIn("<polyline", svg)
        for name in ("p.pdf", "r.pdf"):
            self.assertEqual(self.images(self.path(name)), [])
        self.assertIn("S21 LogMag", self.text(self.path("p.pdf")))
        report = self.text(self.path("r.pdf"))
        for part in ("Measurement report", "PASS", "CH1 S21 passes by", "Marker 1", "12 Term Cal",
                     "Page 1 of 2", "Page 2 of 2", "firmware", "Data file"):
            self.assertIn(part, report)
        digest = subprocess.run(["sha256sum", self.path("r.s2p")], check=True, text=True,
                                capture_output=True).stdout.split()[0]
        self.assertIn(digest, report)

    def test_a_logo_stands_in_the_report(self):
        vna = self.measured("bench attenuator 2")
        logo = self.path("logo.svg")
        pathlib.Path(logo).write_text(
            '<svg xmlns="http://www.w3.org/2000/svg" width="90" height="30"><rect width="90" '
            'height="30" fill="#123456"/></svg>', encoding="utf-8")
        vna.run("click Form1.Report", "set Report.Title Filter test",
                "set Report.Address Example Ltd, 1 High Street", f"set Report.Logo {logo}",
                "set Report.Serial F-17")
        save = vna.send("click Report.Save")
        vna.until_event("dialog save")
        vna.run(f"answer {self.path('f.pdf')}")
        self.assertIsNone(vna.until_closed(save).reason)
        text = self.text(self.path("f.pdf"))
        for part in ("Filter test", "Example Ltd, 1 High Street", "F-17"):
            self.assertIn(part, text)
        self.assertEqual(self.images(self.path("f.pdf")), [])
        pathlib.Path(logo).write_text("no picture", encoding="utf-8")
        self.assertIn("The logo is not a picture", vna.refused(f"save report {self.path('g.pdf')}"))
        self.assertFalse(os.path.exists(self.path("g.pdf")))
        # A batch does not begin: the report of each piece would be refused after its sweeps.
        self.assertIn("The logo is not a picture", vna.refused(f"batch start {self.path('lot')}"))
        self.assertFalse(os.path.exists(self.path("lot")))

    def images(self, path):
        lines = subprocess.run(["pdfimages", "-list", path], check=True, text=True,
                               capture_output=True).stdout.splitlines()
        return lines[2:]

    def text(self, path):
        return subprocess.run(["pdftotext", "-layout", path, "-"], check=True, text=True,
                              capture_output=True).stdout

    # ---- batches -----------------------------------------------------------------------------

    def prepared(self):
        """A folder with a batch that has begun: pattern A####, one sweep a piece."""
        lot = self.path("lot")
        vna = self.measured("bench attenuator 2")
        vna.run(f"batch start {lot}", "batch end")
        vna.run("quit")
        vna.end_of_output()
        path = pathlib.Path(lot) / "batch.txt"
        text = path.read_text(encoding="utf-8")
        self.assertIn("pattern \n", text)
        path.write_text(text.replace("pattern \n", "pattern A####\n"), encoding="utf-8")
        return lot

    def run_batch(self, lot, lines, session=None):
        return subprocess.run(
            [programs.VNA, "--batch", os.path.join(lot, "batch.txt"), "--demo", "--pace", "fast",
             "--folder", session or self.path("session")], input="".join(line + "\n" for line in lines),
            text=True, capture_output=True, timeout=programs.DEADLINE * 3, check=False)

    def rows(self, lot):
        with open(os.path.join(lot, "batch.csv"), newline="", encoding="utf-8") as file:
            return list(csv.DictReader(file))

    def check_rows(self, lot):
        """No row without its files, none twice."""
        rows = self.rows(lot)
        runs = [(row["serial"], row["run"]) for row in rows]
        self.assertEqual(len(runs), len(set(runs)), runs)
        self.assertEqual(len(rows), len({row["file"] for row in rows}))
        for row in rows:
            stem = os.path.join(lot, row["file"])
            with open(stem + ".pdf", "rb") as file:
                self.assertTrue(file.read().endswith(b"%%EOF\n"), stem)
            with open(stem + ".s2p", encoding="utf-8") as file:
                self.assertEqual(len(file.readlines()), POINTS + 4, stem)
        return rows

    def test_twenty_pieces_without_a_window(self):
        lot = self.prepared()
        lines, bad = [], {3, 9, 20}
        for n in range(1, 21):
            lines += [f"bench attenuator {4 if n in bad else 2}", "" if n % 2 else f"A{n:04}"]
        done = self.run_batch(lot, lines + ["A0001", "X1", ":end", "A0099"])
        self.transcript += done.stdout.splitlines() + done.stderr.splitlines()
        self.assertEqual(done.returncode, 1)
        self.assertIn("refused: A0001 was measured: PASS\n", done.stdout)
        self.assertIn('refused: the serial "X1" does not fit the pattern A####\n', done.stdout)
        self.assertTrue(done.stdout.endswith(
            "20 pieces: 17 passed, 3 failed. Yield 85.0 %, first pass 85.0 %.\n"
            "lines refused: A0001, X1\n"), done.stdout)
        rows = self.check_rows(lot)
        self.assertEqual([row["serial"] for row in rows], [f"A{n:04}" for n in range(1, 21)])
        for n, row in enumerate(rows, 1):
            verdict = "FAIL" if n in bad else "PASS"
            self.assertEqual(row["verdict"], verdict)
            self.assertIn(f"{row['serial']} {verdict}  CH1 S21 ", done.stdout)
            self.assertEqual(float(row["ch1_margin"]) < 0, n in bad)
            # The file says the same as the row.
            values = touchstone(os.path.join(lot, row["file"] + ".s2p")).values()
            db = [20 * math.log10(abs(value["S21"])) for value in values]
            margin = min(min(-1 - x, x + 3) for x in db)
            self.assertLess(abs(margin - float(row["ch1_margin"])), 1e-3)
            report = self.text(os.path.join(lot, row["file"] + ".pdf"))
            for part in (row["serial"], verdict, "Marker 1", row["markers"].split(" MHz ")[1]):
                self.assertIn(part, report)
            self.assertEqual(self.images(os.path.join(lot, row["file"] + ".pdf")), [])
            self.assertTrue(row["calibrated_utc"].endswith("Z") and row["instrument"])
        again = self.run_batch(lot, ["bench attenuator 2", ":again A0003", ":again A0009", ":again A0020"])
        self.assertEqual(again.returncode, 0, again.stdout)
        self.assertTrue(again.stdout.endswith("Yield 100.0 %, first pass 85.0 %.\n"))
        self.assertEqual(self.check_rows(lot)[-1]["file"], "A0020-2")

    def test_a_line_that_measures_nothing_is_told_and_ends_with_another_status(self):
        lot = self.prepared()
        done = self.run_batch(lot, ["bench attenuator 2", ":again", ":again A0007", " A0001 ", ":foo",
                                    ":nextt", ":next", "A0002", ":again A0002 ", "A00020", ":end"])
        self.assertEqual(done.returncode, 1)
        self.assertEqual([line for line in done.stdout.splitlines() if line.startswith("refused")], [
            "refused: no piece has been measured yet",
            "refused: A0007 has not been measured in this batch",
            "refused: no command :foo: :again [SERIAL], :next or :end",
            "refused: no command :nextt: :again [SERIAL], :next or :end",
            "refused: A0002 was measured: PASS",
            'refused: the serial "A00020" does not fit the pattern A####'])
        self.assertTrue(done.stdout.endswith(
            "first pass 100.0 %.\nlines refused: :again, A0007, :foo, :nextt, A0002, A00020\n"),
            done.stdout)
        self.assertEqual([(row["serial"], row["run"]) for row in self.check_rows(lot)],
                         [("A0001", "1"), ("A0002", "1"), ("A0002", "2")])
        # The folder alone names the batch as well; with nothing refused all is well.
        done = subprocess.run(
            [programs.VNA, "--batch", lot, "--demo", "--pace", "fast", "--folder",
             self.path("session")], input="bench attenuator 2\n\n", text=True, capture_output=True,
            timeout=programs.DEADLINE * 3, check=False)
        self.assertEqual(done.returncode, 0, done.stdout + done.stderr)
        self.assertTrue(done.stdout.endswith("3 pieces: 3 passed, 0 failed. Yield 100.0 %, "
                                             "first pass 100.0 %.\n"), done.stdout)

    def test_what_cannot_run_says_so(self):
        done = self.run_batch(self.path("nowhere"), [])
        self.assertEqual(done.returncode, 2)
        self.assertIn("nowhere/batch.txt: cannot be opened", done.stderr)
        os.mkdir(self.path("empty"))
        pathlib.Path(self.path("empty"), "batch.txt").write_text("QK47-20-09 batch 1\n",
                                                                 encoding="utf-8")
        done = self.run_batch(self.path("empty"), ["A1"])
        self.assertEqual(done.returncode, 2)
        self.assertIn("no calibration is in force", done.stderr)

    def test_a_hundred_kills_lose_nothing(self):
        # In four batches at once: most of the time is waiting.
        first = self.prepared()
        lots = [first] + [f"{first}-{n}" for n in range(1, 4)]
        for lot in lots[1:]:
            shutil.copytree(first, lot)
        with concurrent.futures.ThreadPoolExecutor(len(lots)) as pool:
            whole = sum(pool.map(self.kills, lots, [25] * len(lots), range(47, 47 + len(lots))))
        print(f"{whole} of 100 runs added a row")
        self.assertGreater(whole, 20)  # the kills came while pieces were measured

    def kills(self, lot, times, seed):
        """Kills a batch so many times, a moment after it began to measure; the runs that added a row."""
        seed = random.Random(seed)
        session = lot + "-session"
        command = [programs.VNA, "--batch", os.path.join(lot, "batch.txt"), "--demo", "--pace",
                   "fast", "--folder", session]
        before, whole = 0, 0
        for _ in range(times):
            with subprocess.Popen(command, stdin=subprocess.PIPE, stdout=subprocess.PIPE,
                                  stderr=subprocess.DEVNULL, text=True) as process:
                process.stdin.write("bench attenuator 2\n" + "\n" * 40)
                process.stdin.flush()
                # The batch, the first piece to connect, and in half of the runs its verdict.
                for _ in range(2 + seed.randrange(2)):
                    process.stdout.readline()
                time.sleep(seed.uniform(0, 0.1))
                process.kill()
                process.wait()
            rows = self.check_rows(lot)
            self.assertGreaterEqual(len(rows), before)
            whole += len(rows) > before
            before = len(rows)
        done = self.run_batch(lot, ["bench attenuator 2", "", ":end"], session)
        self.assertEqual(done.returncode, 0, done.stdout)
        rows = self.check_rows(lot)
        self.assertEqual([row["serial"] for row in rows],
                         [f"A{n:04}" for n in range(1, before + 2)])
        return whole


if __name__ == "__main__":
    sys.exit(programs.main(at_once=3))
