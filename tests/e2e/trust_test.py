# SPDX-License-Identifier: MIT
"""How far to trust a number, over the pseudo-terminal: impedance, memories, a check of the calibration, its
uncertainty in read-outs and files, repeated sweeps, hints."""

import math
import os
import sys

import programs
from calibrating import Calibrating

LOAD = "Matched Load on Port 1"
SHORT, OPEN = "Short Circuit on Port 1 (0.00mm)", "Open Circuit on Port 1 (0.00mm)"


class Trust(Calibrating):
    def calibrate(self):
        self.start()
        self.insertable()

    def check(self, method, *steps):
        """Works Check Calibration; steps are pairs of a prompt and the bench lines before it."""
        self.vna.run("click Form1.CheckCal", f"set CheckCal.{method} on")
        number = self.vna.send("click CheckCal.Check")
        for prompt, bench in steps:
            self.assertIn(prompt, self.vna.until_event("message "))
            self.sim.bench(*bench)
            self.vna.run("answer ok")
        self.assertIsNone(self.vna.until_closed(number).reason)
        return self.vna.run("get CheckCal.Verdict")[0]

    def lines_of(self, name):
        with open(os.path.join(self.folder, name), encoding="utf-8", newline="") as file:
            return file.read().split("\r\n")

    def bytes_of(self, name):
        with open(os.path.join(self.folder, name), "rb") as file:
            return file.read()

    def test_a_resistor_is_read_in_ohms_and_a_capacitor_in_farads(self):
        self.calibrate()
        path = os.path.join(self.folder, "part.s1p")
        with open(path, "w", encoding="ascii") as file:
            file.write("# MHz S RI R 50\n")
            for mhz in range(50, 3101, 10):
                z = 1 / (2j * math.pi * mhz * 1e6 * 10e-12) + 5
                s = (z - 50) / (z + 50)
                file.write(f"{mhz} {s.real!r} {s.imag!r}\n")
        self.sim.bench("noise off")
        self.sweep_twice(f"port1 device {path}")
        self.vna.run("click Form1.SetDisplay")
        for graph, wanted, accuracy in (("R", 5, 0.05), ("C", 10, 0.1)):
            self.vna.run(f"set DisplayPara.ListGraphType {graph}", "click DisplayPara.ApplyDisplay")
            # Below 1 GHz, where the capacitor is not yet a short circuit.
            for line in self.vna.run("data trace 1")[:15]:
                self.assertAlmostEqual(float(line.split()[2]), wanted, delta=accuracy, msg=line)

    def test_a_memory_of_its_own_number_is_divided_by(self):
        self.calibrate()
        self.sweep_twice("port1 open")  # a divisor near nothing has a rule of its own
        self.vna.run("click Form1.SetMemory", "set MemoryPara.Memory3 on",
                     "set MemoryPara.MCH1Select on", "click MemoryPara.StoreData",
                     "set MemoryPara.DivideSelect on", "set Form1.MemoryMath on")
        for line in self.vna.run("data trace 1"):
            self.assertAlmostEqual(float(line.split()[2]), 0, delta=1e-3)
        self.vna.run("set MemoryPara.Memory1 on")
        self.assertIn("holds no memory trace", self.vna.refused("data memory 1"))

    def test_the_uncertainty_rests_on_the_checks_and_holds_the_truth(self):
        self.calibrate()
        self.sim.bench("step 0.02 after 0")  # the test set has changed since
        self.sweep_twice("attenuator 20")
        self.assertEqual(self.vna.refused("data uncertainty S21"),
                         "not checked: transmission tracking")
        refused = self.vna.refused(f"save csv S21 mag,U {self.folder}/u.csv")
        self.assertEqual(refused, "no uncertainty of S21: not checked: transmission tracking")
        self.assertFalse(os.path.exists(os.path.join(self.folder, "u.csv")))
        self.assertEqual(self.check("Standards", (SHORT, ["port1 short"]), (OPEN, ["port1 open"]),
                                    (LOAD, ["port1 load"])), "Good")
        self.assertEqual(self.check("Through", ("Connect Through", ["through"])), "Good")
        self.assertRegex(self.check("Isolation", ("Terminate Ports 1 & 2",
                                                  ["port1 load", "port2 load"])),
                         r"^Isolation -[0-9.]+ dB at [0-9]+ MHz: no limit\\n"
                         r"Directivity of port 2 -[0-9.]+ dB at [0-9]+ MHz: good$")
        self.assertEqual(self.check("Standards2", ("Short Circuit on Port 2", ["port2 short"]),
                                    ("Open Circuit on Port 2", ["port2 open"]),
                                    ("Matched Load on Port 2", ["port2 load"])), "Good")
        self.assertEqual(len(self.vna.run("data check port2_source_match")), 51)
        self.sweep_twice("attenuator 20")
        self.vna.run(f"save csv S21 mag,U {self.folder}/u.csv")
        lines = self.lines_of("u.csv")
        self.assertTrue(any(line.startswith("# Uncertainty S21_U: Coverage k = 2 (about 95 %). Through ")
                            for line in lines))
        rows = lines[lines.index("freq_Hz,S21_mag,S21_U") + 1:-1]
        self.assertEqual(len(rows), 51)
        for row in rows:
            hertz, size, expanded = map(float, row.split(","))
            truth = abs(self.sim.truth(hertz)["S21"])
            self.assertGreater(abs(size - truth), 1e-4, "the change is there")
            self.assertLess(abs(size - truth), expanded, row)
            self.assertLess(expanded, 1e-3, row)
        # A number goes to other programs when the noise of this device is known, from its fourth sweep on.
        self.sweep_twice("attenuator 6")
        self.assertEqual(self.vna.refused("data uncertainty S21"),
                         "noise not known: four sweeps of the device are needed")
        self.sweep_twice("attenuator 6")
        self.assertEqual(len(self.vna.run("data uncertainty S21")), 51)
        # On the graph only when it is switched on.
        self.vna.run("resize 900 600", f"picture {self.folder}/off.png",
                     "click Form1.UncertaintyBand", f"picture {self.folder}/on.png",
                     "click Form1.UncertaintyBand", f"picture {self.folder}/again.png")
        off, on, again = map(self.bytes_of, ("off.png", "on.png", "again.png"))
        self.assertNotEqual(off, on)
        self.assertEqual(off, again)
        with open(os.path.join(self.folder, "session", "CalChecks.csv"), encoding="utf-8") as file:
            self.assertEqual(len(file.read().splitlines()), 5)

    def test_repeated_sweeps_are_a_file_with_where_they_come_from(self):
        self.calibrate()
        self.sim.bench("noise on", "attenuator 10")
        self.vna.run("click Form1.SweepStats", "set SweepStats.Sweeps 5", "click SweepStats.Start")
        self.assertEqual(self.vna.run("get SweepStats.State"), ["5 of 5 sweeps"])
        number = self.vna.send("click SweepStats.Save")
        self.vna.until_event("dialog save")
        self.vna.run(f"answer {self.folder}/repeats.csv")
        self.assertIsNone(self.vna.until_closed(number).reason)
        lines = self.lines_of("repeats.csv")
        self.assertTrue(lines[0].startswith("# Program: qk47-vna 0."))
        self.assertIn("# Statistics: 5 of 5 sweeps", lines)
        self.assertEqual(len([line for line in lines if line[:1].isdigit()]), 51)

    def test_a_hint_comes_and_is_silenced(self):
        self.calibrate()
        self.sweep_twice("attenuator 10")
        self.assertEqual(self.vna.run("data hints"), [])
        self.sim.bench("port2 nothing")
        self.sweep_twice("port1 nothing")
        self.assertEqual(self.vna.run("data hints"), ["nothing-connected Nothing seems connected"])
        self.assertEqual(self.vna.run("get Form1.ShowHints"), ["on"])
        self.vna.run("click Form1.SilenceHint")
        self.assertEqual(self.vna.run("data hints"), [])


if __name__ == "__main__":
    sys.exit(programs.main())
