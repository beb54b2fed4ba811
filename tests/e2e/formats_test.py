#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Each format on each parameter, measured on the simulated instrument over the text front panel and
compared with its formula over the corrected data."""

import cmath
import math
import sys

import programs
from calibrating import Calibrating

PARAMETERS = ("S11", "S21", "S12", "S22")
POINTS = 51


def degrees(z):
    """Wrapped phase, 180 and not -180 on the negative real axis; a real part below 1e-9 counts as
    +1e-9, which deep in a stop band is what decides."""
    return math.degrees(math.atan2(z.imag, 1e-9 if abs(z.real) < 1e-9 else z.real))


def swr(z):
    m = min(abs(z), 0.99)
    return (1 + m) / (1 - m)


# Graph type, unit, value of a point (from its complex value), what it may differ by.
FORMATS = (
    ("LogMag", "dB", lambda z: 20 * math.log10(max(abs(z), 1e-11)), 1e-9),
    ("Phase", "deg", degrees, 1e-4),
    ("LinMag", "mU", lambda z: abs(z) * 1000, 1e-9),
    ("Real", "U", lambda z: z.real, 1e-12),
    ("Imag", "U", lambda z: z.imag, 1e-12),
    ("SWR", "U", swr, 1e-4),
)


class Formats(Calibrating):
    def start(self, start, stop, points):
        self.sim = self.simulator("--pace", "fast", "--device", "noise off")
        self.vna = self.front_panel(*self.on_com(1, self.sim.link))
        self.vna.run("wait ms 0", "click Form1.SetCal", f"set Calibration.Text1 {start}",
                     f"set Calibration.Text2 {stop}", f"set Calibration.PntsCombo {points}",
                     "click Calibration.Command1")

    def show(self, channel, parameter, graph_type, units, scale="10"):
        self.vna.run(f"set DisplayPara.CH{channel}Select on",
                     f"set DisplayPara.ListParameters {parameter}",
                     f"set DisplayPara.ListGraphType {graph_type}")
        if units:
            self.vna.run(f"set DisplayPara.ListUnits {units}",
                         f"set DisplayPara.SensInput {scale}")
        self.vna.run("set DisplayPara.Option1 on", "click DisplayPara.ApplyDisplay")

    def sweep(self):
        start = self.vna.send("click Form1.StartMeasurement")
        self.vna.run("wait sweeps 1", "click Form1.StopMeasurement", "wait idle")
        self.assertIsNone(self.vna.until_closed(start).reason)

    def trace(self, channel):
        """[(x, value, value2)] of a channel."""
        return [tuple(float(word) for word in line.split()[1:])
                for line in self.vna.run(f"data trace {channel}")]

    def test_each_format_of_each_parameter_is_its_formula(self):
        self.start("100", "3000", POINTS)
        self.insertable()
        self.sim.bench("filter")
        self.vna.run("click Form1.SetDisplay")
        for graph_type, units, formula, tolerance in FORMATS:
            shown = [p for p in PARAMETERS if graph_type != "SWR" or p in ("S11", "S22")]
            for channel, parameter in enumerate(PARAMETERS, 1):
                if parameter in shown:
                    self.show(channel, parameter, graph_type, units)
            self.sweep()
            for channel, parameter in enumerate(PARAMETERS, 1):
                if parameter not in shown:
                    continue
                data = self.vna.corrected(parameter)
                trace = self.trace(channel)
                self.assertEqual(len(trace), POINTS)
                for (hertz, z), (x, value, _) in zip(data, trace):
                    self.assertAlmostEqual(x, hertz)
                    wrong = abs(value - formula(z))
                    if graph_type == "Phase":
                        wrong = min(wrong, abs(360 - wrong))  # the two ends of the wrap
                    self.assertLessEqual(wrong, tolerance * max(1, abs(formula(z))),
                                         f"{graph_type} of {parameter} at {hertz}")

    def test_a_smith_chart_holds_both_parts(self):
        self.start("100", "3000", POINTS)
        self.insertable()
        self.sim.bench("filter")
        self.vna.run("click Form1.SetDisplay")
        for channel, parameter in ((1, "S11"), (4, "S22")):
            self.show(channel, parameter, "Smith", "")
        self.sweep()
        for channel, parameter in ((1, "S11"), (4, "S22")):
            for (_, z), (_, re, im) in zip(self.vna.corrected(parameter), self.trace(channel)):
                self.assertEqual((re, im), (z.real, z.imag))

    def test_group_delay_is_the_fall_of_the_phase_over_one_step(self):
        self.start("100", "3000", POINTS)
        self.insertable()
        self.sim.bench("filter")
        self.vna.run("click Form1.SetDisplay")
        # One reflection and one transmission: two of a kind share a previous phase.
        for channel, parameter in ((1, "S11"), (2, "S21")):
            self.show(channel, parameter, "Group Delay", "ps")
        self.sweep()
        for channel, parameter in ((1, "S11"), (2, "S21")):
            data = self.vna.corrected(parameter)
            trace = self.trace(channel)
            step = data[1][0] - data[0][0]
            for i in range(1, POINTS):
                fall = (degrees(data[i - 1][1]) - degrees(data[i][1]) + 180) % 360 - 180
                delay = fall / 360 / step * 1e12
                # Phases are 32-bit degrees: 1.5e-5 degrees over this step.
                self.assertAlmostEqual(trace[i][1], delay, delta=3e-5 / 360 / step * 1e12 + 1e-3)
            self.assertEqual(trace[0][1], trace[1][1])

    def test_the_time_domain_is_the_running_sum_of_the_transform(self):
        self.start("3", "3072", "1024 (TD)")
        self.vna.run("set Calibration.Option3 on")
        self.reflection()
        self.apply("S11 Cal")
        self.sim.bench("port1 short offset 300 mm")
        self.vna.run("click Form1.SetDisplay", "set DisplayPara.ListGraphType TD",
                     "set DisplayPara.SensInput 0.25", "click DisplayPara.ApplyDisplay")
        self.sweep()
        response = step_response(self.vna.corrected("S11"))
        trace = self.trace(1)
        self.assertAlmostEqual(trace[0][0], -5e-9)
        sample = 1.629194e-10
        for x, value, _ in trace[::7]:
            # Between two samples the trace lies near the line that joins them.
            at = (x + 5e-9) / sample + 1
            k = min(int(at), 2046)
            joined = response[k] + (response[k + 1] - response[k]) * (at - k)
            self.assertAlmostEqual(value, joined, delta=0.05)
        # At the far end of the trace, behind all ringing, the level is a short's.
        self.assertAlmostEqual(trace[600][1], -1, delta=0.02)


def step_response(points):
    """The response by its definition, on the samples 0 to 2047."""
    spectrum = [0] * 1025
    for i, (hertz, z) in enumerate(points, 1):
        spectrum[i] = z * cmath.exp(-2j * math.pi * hertz * 5.15e-9)
    re = [s.real if s else 0.0 for s in spectrum]
    im = [-s.imag if s else 0.0 for s in spectrum]
    re[0] = max(-1, min(1, 3 * re[1] + re[3] - 3 * re[2]))
    re[0] /= 2
    re[1024] /= 2
    total, response = 0.0, []
    for n in range(2048):
        turn = cmath.exp(2j * math.pi * n / 2048)
        w, impulse = 1 + 0j, 0.0
        for k in range(1025):
            impulse += w.real * re[k] + w.imag * im[k]
            w *= turn
        total += impulse / 1024
        response.append(total)
    return response


if __name__ == "__main__":
    sys.exit(programs.main(at_once=3))
