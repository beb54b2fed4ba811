#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""The line to the instrument fails: at the start, in a sweep, for good and for a while."""

import os
import sys

import programs
from programs import EndToEnd

NO_INSTRUMENT = "message VNA Control | No instrument detected."


class Line(EndToEnd):
    def calibrated(self):
        """A front panel that sweeps S11 of the filter; the number of its click on START."""
        self.sim = self.simulator("--pace", "fast")
        self.vna = self.front_panel(*self.on_com(3, self.sim.link))
        self.vna.run("click Form1.SetCal", "set Calibration.PntsCombo 51",
                     "click Calibration.Command1", "set Calibration.Option3 on")
        for bench, button in (("port1 open", "O_Cal"), ("port1 short", "S_Cal"),
                              ("port1 load", "M_Cal")):
            self.sim.bench(bench)
            self.vna.measure(f"Calibration.{button}", "Port 1")
        self.vna.run("click Calibration.App_Cal", "click Calibration.Cls_Cal")
        self.sim.bench("filter", "pace 115200")
        start = self.vna.send("click Form1.StartMeasurement")
        self.vna.run("wait sweeps 1")
        return start

    def expect_no_response(self, start):
        event = self.vna.until_event("message ")
        self.assertEqual(event, "message Measure S11 | No Response | exclamation | ok")
        self.vna.run("answer ok")
        self.assertIsNone(self.vna.until_closed(start).reason)
        self.assertEqual(self.vna.panel(6), "Sweep Off")
        self.assertEqual(self.vna.panel(3), "S11 Cal")

    def test_a_pulled_cable_ends_the_sweep_and_the_prompt_lives_on(self):
        start = self.calibrated()
        self.sim.bench("fault unplugged")
        self.expect_no_response(start)
        # START again without an instrument: the same message, and the program goes on.
        self.vna.measure("Form1.StartMeasurement", "No Response")
        self.vna.measure("Form1.StartMeasurement", "No Response")

    def test_an_instrument_that_dies_ends_the_sweep(self):
        start = self.calibrated()
        self.sim.process.kill()
        self.expect_no_response(start)

    def test_a_stalled_stream_ends_the_sweep(self):
        start = self.calibrated()
        self.sim.bench("fault stall")
        self.expect_no_response(start)

    def test_plugged_in_again_it_measures_after_a_restart(self):
        start = self.calibrated()
        self.sim.bench("fault unplugged")
        self.expect_no_response(start)
        self.vna.run("wait ms 200")  # the instrument's own sweep runs out meanwhile
        self.sim.bench("fault replugged")
        self.vna.restart()
        self.assertEqual(self.vna.panel(2), " 3, 115.2 Kb/s")
        self.assertEqual(self.vna.panel(3), "UNCAL")

    def test_retry_finds_an_adaptor_plugged_in_after_the_first_scan(self):
        link = os.path.join(self.folder, "vna-line")
        self.vna = self.front_panel(*self.on_com(16, link))
        self.vna.until_event(NO_INSTRUMENT)
        self.simulator("--pace", "fast")
        self.vna.run("answer retry", "wait ms 0")
        self.assertEqual(self.vna.panel(2), " 16, 115.2 Kb/s")

    def test_a_device_is_found_by_a_path_from_the_working_folder(self):
        self.sim = self.simulator("--pace", "fast")
        self.vna = self.front_panel(*self.on_com(2, os.path.relpath(self.sim.link)))
        self.vna.run("wait ms 0")
        self.assertEqual(self.vna.panel(2), " 2, 115.2 Kb/s")

    def test_cancel_leaves_the_window_up_without_an_instrument(self):
        self.vna = self.front_panel(*self.on_com(1, "/dev/null/none"))
        self.vna.until_event(NO_INSTRUMENT)
        self.assertEqual(self.vna.refused("panels now"), "panels takes no arguments")
        self.vna.run("answer cancel", "wait ms 0")
        self.assertEqual(self.vna.panel(2), "No Instrument!")
        self.assertEqual(self.vna.run("windows"), ["Form1"])

    def test_another_model_is_told_and_not_taken(self):
        self.sim = self.simulator("--pace", "fast", "--device", "fault model QK99-99-99")
        self.vna = self.front_panel(*self.on_com(1, self.sim.link))
        self.assertEqual(self.vna.until_event("message "),
                         "message Instrument ID | Wrong model instrument | critical | ok")
        self.vna.run("answer ok")
        self.vna.until_event(NO_INSTRUMENT)
        self.vna.run("answer cancel")


if __name__ == "__main__":
    sys.exit(programs.main(at_once=3))
