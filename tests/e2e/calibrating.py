# SPDX-License-Identifier: MIT
"""Calibrations over a pseudo-terminal: the sweep, the standards, the result against the truth."""

from programs import EndToEnd

OPEN1 = "Open Circuit on Port 1 (0.00mm)"
SHORT1 = "Short Circuit on Port 1 (0.00mm)"
LOAD1 = "Matched Load on Port 1"


class Calibrating(EndToEnd):
    def start(self, pace="fast", points="51"):
        self.points = int(points)
        self.sim = self.simulator("--pace", pace, "--device", "noise off")
        self.launch()
        self.assertEqual(self.vna.panel(1), "SN. 147")
        self.assertEqual(self.vna.panel(2), " 1, 115.2 Kb/s")
        self.assertEqual(self.vna.panel(3), "UNCAL")
        self.vna.run("click Form1.SetCal", "set Calibration.Text1 100", "set Calibration.Text2 3000",
                     f"set Calibration.PntsCombo {points}", "click Calibration.Command1")
        self.assertEqual(self.vna.run("get Calibration.Text3"), [f"{2900 / (int(points) - 1):.4f}"])

    def launch(self):
        self.vna = self.front_panel(*self.on_com(1, self.sim.link))
        # On a busy machine the simulated instrument may miss the time of its first reply. Retry, as a person would.
        started = self.vna.until_closed(self.vna.send("wait ms 0"))
        if started.reason is not None:
            self.vna.run("answer retry", "wait ms 0")

    def standard(self, bench, button, prompt):
        self.sim.bench(*bench)
        self.vna.measure(f"Calibration.{button}", prompt)

    def apply(self, status):
        self.vna.run("click Calibration.App_Cal", "click Calibration.Cls_Cal")
        self.assertEqual(self.vna.panel(3), status)

    def sweep_twice(self, device):
        self.sim.bench(device)
        for _ in range(2):  # START would go on until STOP arrives, for more sweeps than two
            single = self.vna.send("click Form1.SingleSweep")
            self.vna.run("wait idle")
            self.assertIsNone(self.vna.until_closed(single).reason)
        self.assertEqual(self.vna.panel(6), "Sweep Off")

    def error_of(self, parameter, relative=False):
        """The largest distance of the corrected data from the device's truth."""
        points = self.vna.corrected(parameter)
        self.assertEqual(len(points), self.points)
        worst = 0
        for hertz, value in points:
            truth = self.sim.truth(hertz)[parameter]
            worst = max(worst, abs(value - truth) / (abs(truth) if relative else 1))
        self.transcript.append(f"# {parameter}: worst error {worst:.2e}")
        return worst

    def reflection(self):
        self.standard(["port1 open", "port2 nothing"], "O_Cal", OPEN1)
        self.standard(["port1 short"], "S_Cal", SHORT1)
        self.standard(["port1 load", "port2 load"], "M_Cal", LOAD1)

    def transmission(self):
        self.standard(["through"], "Thru_Cal", "Connect Through")
        self.standard(["port1 load", "port2 load"], "Iso_Cal", "Terminate Ports 1 & 2")

    def insertable(self, while_asked=lambda: None):
        """All four parameters with two kits and the basic isolation, which measures nothing more;
        while_asked runs while the methods of isolation are up."""
        self.vna.run("set Calibration.Option5 on")
        self.standard(["port1 open", "port2 open"], "O_Cal",
                      "Open Circuit on Ports 1 and 2 (0.00 / 0.00mm)")
        self.standard(["port1 short", "port2 short"], "S_Cal",
                      "Short Circuit on Ports 1 and 2 (0.00 / 0.00mm)")
        self.standard(["port1 load", "port2 load"], "M_Cal", "Matched Load on Ports 1 & 2")
        self.standard(["through"], "Thru_Cal", "Connect Through (0.00 mm)")
        isolation = self.vna.send("click Calibration.Iso_Cal")
        self.vna.until_event("show IsoMethod")
        while_asked()
        self.vna.run("click IsoMethod.Command1")
        self.assertIsNone(self.vna.until_closed(isolation).reason)
        self.apply("12 Term Cal")
