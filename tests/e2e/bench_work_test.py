#!/usr/bin/env python3
"""The utilities over the pseudo-terminal: a known amplifier, and the EEPROM there and back."""

import os
import sys

import programs
from programs import EndToEnd

BACK_UP = "message Eeprom Backup | This will create a copy of EEPROM data"
RESTORE = "message Restore EEPROM | This will restore the EEPROM data"
SURE = "message Restore EEPROM | Data appears valid."


class BenchWork(EndToEnd):
    def setUp(self):
        super().setUp()
        self.sim = self.simulator("--pace", "fast")
        self.sim.bench("noise off", "temperature 31")
        self.vna = self.front_panel(*self.on_com(1, self.sim.link))

    def copy_eeprom(self, menu, window, path, *questions):
        """Works an EEPROM window; gives the event that ends it."""
        self.vna.send(f"click Form1.{menu}")
        self.vna.until_event(f"show {window}")
        self.vna.send(f"click {window}.Command1")
        self.vna.until_event(questions[0])
        self.vna.send("answer yes")
        self.vna.until_event("dialog ")
        self.vna.send(f"answer {path}")
        for question in questions[1:]:
            self.vna.until_event(question)
            self.vna.send("answer yes")

    def back_up(self, name):
        path = os.path.join(self.folder, name)
        self.copy_eeprom("SaveEEPROM", "EepromBk", path, BACK_UP)
        self.vna.until_event("hide EepromBk")
        with open(path, "rb") as file:
            return path, file.read()

    def test_a_changed_byte_comes_back_by_a_restore(self):
        path, factory = self.back_up("factory.bak")
        numbers = [int(word) for word in factory.split()]
        self.assertEqual(len(numbers), 32768)
        self.assertEqual(sum(numbers[:-1]) % 256, numbers[-1])
        # Two bytes, so that the checksum of the spoilt content holds too.
        first, second = numbers[5000], numbers[5001]
        self.sim.bench(f"eeprom 5000 {(first + 1) % 256}", f"eeprom 5001 {(second - 1) % 256}")
        _, spoilt = self.back_up("spoilt.bak")
        self.assertNotEqual(spoilt, factory)
        self.copy_eeprom("RestoreEEPROM", "EepromRest", path, RESTORE, SURE)
        self.vna.until_event("hide EepromRest")
        _, again = self.back_up("again.bak")
        self.assertEqual(again, factory)

    def test_a_restored_serial_number_counts_at_the_next_start(self):
        path, factory = self.back_up("factory.bak")
        numbers = [int(word) for word in factory.split()]
        # "0147" becomes "0148"; the checksum follows.
        numbers[13] += 1
        numbers[-1] = (numbers[-1] + 1) % 256
        with open(path, "w", encoding="ascii") as file:
            file.write("\n".join(map(str, numbers)))
        self.copy_eeprom("RestoreEEPROM", "EepromRest", path, RESTORE, SURE)
        self.vna.until_event("hide EepromRest")
        self.assertEqual(self.vna.panel(1), "SN. 147")
        self.sim.bench("power cycle")
        restart = self.vna.send("click Form1.ReStart")
        self.vna.until_event("message Re-Start Program")
        self.vna.run("answer yes")
        self.vna.until_event("message Re-Start Program")
        self.vna.run("answer ok")
        self.assertIsNone(self.vna.until_closed(restart).reason)
        self.assertEqual(self.vna.panel(1), "SN. 148")

    def test_a_cable_pulled_in_a_restore_says_that_the_eeprom_is_part_written(self):
        path, _ = self.back_up("factory.bak")
        self.copy_eeprom("RestoreEEPROM", "EepromRest", path, RESTORE)
        self.vna.until_event(SURE)
        # A block of 128 bytes takes 640 ms of the EEPROM's time at the line's own pace.
        self.sim.bench("pace 115200")
        self.vna.send("answer yes")
        self.vna.run("wait ms 2000")
        self.sim.bench("fault unplugged")
        self.vna.until_event("message Restore EEPROM | No Response | critical | ok")
        self.vna.run("answer ok", "wait ms 0")
        self.assertIn("Run the restore again", self.vna.run("get EepromRest.State")[0])
        self.vna.run("click EepromRest.Command2")

    def test_a_known_amplifier_is_found(self):
        self.vna.run("click Form1.SetCal", "set Calibration.PntsCombo 51",
                     "click Calibration.Command1", "set Calibration.Option4 on")
        self.sim.bench("through")
        self.vna.measure("Calibration.Thru_Cal", "Connect Through")
        self.sim.bench("port1 load", "port2 load")
        self.vna.measure("Calibration.Iso_Cal", "Terminate Ports 1 & 2")
        self.vna.run("click Calibration.App_Cal", "click Calibration.Cls_Cal")
        self.vna.send("click Form1.P1dB")
        self.vna.until_event("show P1dBForm")
        self.sim.bench("through")
        self.vna.measure("P1dBForm.Command5", "Connect through")
        self.sim.bench("amplifier gain 14 p1db 4 matched")
        self.vna.measure("P1dBForm.Command1", "Connect DUT")
        self.assertAlmostEqual(float(self.vna.run("get P1dBForm.Text4")[0]), 4, delta=0.1)
        self.assertAlmostEqual(float(self.vna.run("get P1dBForm.Text6")[0]), 14, delta=0.1)
        rows = [[float(word) for word in line.split()] for line in self.vna.run("data power")]
        self.assertEqual([row[0] for row in rows], list(range(-20, 1)))
        for _, pin, gain, pout in rows:
            self.assertAlmostEqual(pin + gain, pout, delta=1e-9)
            words = self.sim.bench(f"driven 1501500000 {pin}")[0].split()
            self.assertAlmostEqual(pout, float(words[4]), delta=0.12)
        self.vna.run("click P1dBForm.Command2")


if __name__ == "__main__":
    sys.exit(programs.main())
