#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""The utilities over the pseudo-terminal: a known amplifier, and the EEPROM there and back."""

import csv
import os
import struct
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
        self.vna.restart()
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

    def saved_table(self, window, button):
        """The lines of a test's file as a reader of tables cuts them, at blanks."""
        path = os.path.join(self.folder, f"{window}.dat")
        self.vna.send(f"click {window}.{button}")
        self.vna.until_event("dialog save")
        self.vna.send(f"answer {path}")
        self.vna.run("wait ms 0")
        with open(path, newline="", encoding="ascii") as file:
            return list(csv.reader(file, delimiter=" ", skipinitialspace=True, strict=True))

    def test_a_known_amplifier_is_found_and_its_file_read_as_a_table(self):
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
        table = self.saved_table("P1dBForm", "Command4")
        self.assertEqual(table[0], ["P1dB", "Test"])
        self.assertEqual([len(cell) for cell in table[1]], [len("2026-11-21"), len("14:05:30")])
        self.assertEqual(table[2:4], [[], []], "the line with a single CR")
        self.assertEqual(table[4], ["Test", "Frequency", "(MHz)=1501.5000"])
        found = self.vna.run("get P1dBForm.Text4")[0]
        self.assertEqual(table[5], ["Measured", "P1dB", f"(dBm)={found}"])
        self.assertEqual(table[6], [])
        self.assertEqual(table[7], ["Pin(dBm)", "Gain(dB)", "Pout(dBm)"])
        self.assertEqual(len(table), 8 + 21)
        for cells, row in zip(table[8:], rows):
            self.assertEqual(len(cells), 3)
            for cell, value in zip(cells, row[1:]):
                self.assertAlmostEqual(float(cell), value, delta=0.00501)
        plot = os.path.join(self.folder, "plot.png")
        self.vna.run(f"picture P1dBForm.NTGraph1 {plot}")
        with open(plot, "rb") as file:
            self.assertEqual(file.read(24)[16:], struct.pack(">II", 560, 400), "its size")
        self.vna.run("click P1dBForm.Command2")


if __name__ == "__main__":
    sys.exit(programs.main(at_once=3))
