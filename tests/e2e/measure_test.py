#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""The whole job over a pseudo-terminal: start-up, sweep entry, every kind of calibration that the
default kits allow, two sweeps, and the result against the device's own truth."""

import cmath
import sys

import programs
from calibrating import OPEN1, Calibrating


class Measure(Calibrating):
    def test_s11(self):
        self.start(pace="115200")
        self.vna.run("set Calibration.Option3 on")
        self.reflection()
        self.apply("S11 Cal")
        # A one-port: this kind does not correct what is connected after a two-port.
        self.sweep_twice("port1 short offset 40 mm")
        self.assertLess(self.error_of("S11"), 1e-3)
        phases = {round(cmath.phase(value), 1) for _, value in self.vna.corrected("S11")}
        self.assertGreater(len(phases), 20)

    def test_s21(self):
        self.start()
        self.vna.run("set Calibration.Option4 on")
        self.transmission()
        self.apply("S21 Cal")
        # A matched device: this kind corrects no mismatch.
        self.sweep_twice("attenuator 10")
        self.assertLess(self.error_of("S21", relative=True), 0.03)

    def test_s11_and_s21(self):
        self.start()
        self.vna.run("set Calibration.Option6 on")
        self.reflection()
        self.transmission()
        self.apply("S11+S21 Cal")
        self.sweep_twice("attenuator 10")
        self.assertLess(self.error_of("S21", relative=True), 2e-3)
        # The load match of port 2 is uncorrected, after the 20 dB of two passages.
        self.assertLess(self.error_of("S11"), 0.02)

    def test_insertable(self):
        self.start()
        self.insertable(while_asked=lambda: self.assertEqual(
            self.vna.refused("click Form1.StopMeasurement"),
            "Form1 cannot be reached while IsoMethod is up"))
        self.sweep_twice("filter")
        for parameter in ("S11", "S21", "S12", "S22"):
            self.assertLess(self.error_of(parameter), 1e-3, parameter)

    def test_an_incomplete_calibration_is_refused(self):
        self.start()
        self.vna.run("set Calibration.Option3 on")
        self.standard(["port1 open"], "O_Cal", OPEN1)
        self.vna.measure("Calibration.App_Cal", "S11 Calibration Not Complete")
        self.assertEqual(self.vna.panel(3), "UNCAL")
        self.vna.measure("Form1.StartMeasurement", "No Calibration")


if __name__ == "__main__":
    sys.exit(programs.main(at_once=3))
