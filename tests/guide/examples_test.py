#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""The worked examples of the manual: each section's console lines are run as they are written, in the
real program on the simulated instrument, and every number that the page states is that of the run.

usage: examples_test.py QK47-VNA

In a block of console lines `# = ...` states a reply of the line before (`# ...`: more replies follow,
which the page leaves out; `…`: a word that may be any). The instrument is noisy: a stated number with decimals
holds when the program's is within one unit of its last digit, a whole number when the program's rounds to it. In
the text a number in bold with its unit (**-17.2 dB**) is one that the section states as a reply."""

import pathlib
import re
import subprocess
import sys
import tempfile
import unittest

VNA = pathlib.Path(sys.argv.pop(1)).resolve()
MANUAL = pathlib.Path(__file__).resolve().parent.parent.parent / "docs" / "manual"
NUMBER = re.compile(r"^[-+]?\d+(\.\d+)?([eE][-+]?\d+)?$")
BLOCK = re.compile(r"^```console\n(.*?)^```$", re.MULTILINE | re.DOTALL)
SCALES = {"MHz": 1e6, "GHz": 1e9, "ns": 1e-9}


def holds(stated, actual):
    """Whether a word of a reply is as stated."""
    if stated == "…":
        return True
    if not (NUMBER.match(stated) and NUMBER.match(actual)):
        return stated == actual
    decimals = len(stated.partition(".")[2])
    return abs(float(actual) - float(stated)) <= (1.0001 * 10.0 ** -decimals if decimals else 0.5)


def numbers(text):
    return [float(n) for n in re.findall(r"(?<![\w.])[-+]?\d+(?:\.\d+)?(?:[eE][-+]?\d+)?", text)]


class Section:
    """A page, or a part of it with one heading: its console lines and its text."""

    def __init__(self, name, text):
        self.name = name
        blocks = BLOCK.findall(text)
        self.lines = "\n".join(blocks).splitlines()
        self.prose = BLOCK.sub("", text)

    @property
    def script(self):
        return "\n".join(self.lines) + "\n"

    def commands(self):
        """(line, stated replies, whether more may follow) of each command."""
        found = []
        for line in self.lines:
            if line.startswith("# = "):
                found[-1][1].append(line[4:])
            elif line == "# ...":
                found[-1][2] = True
            elif line.strip() and not line.startswith("#"):
                found.append([line, [], False])
        return found

    def quantities(self):
        """The numbers in bold with their units."""
        return re.findall(r"\*\*([-+]?\d+(?:\.\d+)?) ?([A-Za-z/]*)\*\*", self.prose)


def sections():
    for path in sorted(MANUAL.glob("0[67]-*.md")):
        for part in re.split(r"^(?=## )" if path.name.startswith("07") else r"(?!)",
                             path.read_text(encoding="utf-8"), flags=re.MULTILINE):
            if "```console" in part:
                yield Section(f"{path.name}: {part.splitlines()[0].lstrip('# ')}", part)


class Run:
    """What the program printed: the replies of each command, by its number."""

    def __init__(self, section, folder):
        script = pathlib.Path(folder, "example.txt")
        script.write_text(section.script, encoding="utf-8")
        done = subprocess.run([VNA, "--console", "--demo", "--pace", "fast", "--folder",
                               pathlib.Path(folder, "session"), "--script", script], cwd=folder,
                              capture_output=True, text=True, timeout=120, check=False)
        self.status, self.text = done.returncode, done.stdout + done.stderr
        self.replies, self.errors, waiting = {}, [], []
        for line in done.stdout.splitlines():
            if line.startswith("= "):
                waiting.append(line[2:])
            elif line.startswith("ok ") or line.startswith("error "):
                number = int(re.search(r"\d+", line)[0])
                self.replies[number], waiting = waiting, []
                if line.startswith("error"):
                    self.errors.append(line)


class Examples(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.sections = list(sections())
        cls.runs = {}
        for section in cls.sections:
            with tempfile.TemporaryDirectory() as folder:
                cls.runs[section.name] = Run(section, folder)

    def test_there_are_the_examples_that_the_manual_promises(self):
        self.assertEqual([section.name.partition(": ")[2] for section in self.sections],
                         ["A first measurement", "Aligning a filter against limits", "An antenna",
                          "The fault in a cable", "The compression of an amplifier",
                          "De-embedding a fixture"])

    def test_every_line_is_accepted(self):
        for section in self.sections:
            run = self.runs[section.name]
            with self.subTest(section.name):
                self.assertEqual((run.status, run.errors), (0, []), run.text)
                self.assertEqual(sorted(run.replies),
                                 list(range(1, len(section.commands()) + 1)), run.text)

    def test_every_stated_reply_is_that_of_the_run(self):
        for section in self.sections:
            stated_at_all = False
            for number, (line, stated, more) in enumerate(section.commands(), 1):
                if not stated:
                    continue
                stated_at_all = True
                actual = self.runs[section.name].replies.get(number, [])
                with self.subTest(section.name, line=line):
                    self.assertTrue(len(actual) == len(stated)
                                    or (more and len(actual) > len(stated)), actual)
                    for want, got in zip(stated, actual):
                        words = re.split(r"[ ,]+", want), re.split(r"[ ,]+", got)
                        self.assertEqual(len(words[0]), len(words[1]), (want, got))
                        self.assertTrue(all(map(holds, *words)), f"stated {want}\nactual {got}")
            self.assertTrue(stated_at_all, section.name)

    def test_every_number_in_bold_is_one_of_the_run(self):
        for section in self.sections:
            stated = [" ".join(reply for _, replies, _ in section.commands() for reply in replies)]
            found = numbers(" ".join(stated))
            quantities = section.quantities()
            self.assertTrue(quantities, section.name)
            for number, unit in quantities:
                decimals = len(number.partition(".")[2])
                scale = SCALES.get(unit, 1)
                with self.subTest(section.name, number=number, unit=unit):
                    self.assertTrue(any(abs(value / s - float(number)) <= 0.5001 * 10 ** -decimals
                                        for value in found for s in {1, scale}), sorted(set(found)))


class TheRules(unittest.TestCase):
    """A page that is wrong is found."""

    def test_a_number_holds_within_a_unit_of_its_last_digit_and_a_whole_one_when_the_other_rounds_to_it(self):
        self.assertTrue(holds("-17.2", "-17.29"))
        self.assertFalse(holds("-17.2", "-17.31"))
        self.assertFalse(holds("101", "102"))
        self.assertTrue(holds("…", "102"))
        self.assertTrue(holds("active", "active"))
        self.assertFalse(holds("active", "shown"))

    def test_the_numbers_in_bold_are_taken_with_their_units(self):
        section = Section("x", "It is **-0.83 dB** at **868 MHz**, not **START**.")
        self.assertEqual(section.quantities(), [("-0.83", "dB"), ("868", "MHz")])


if __name__ == "__main__":
    unittest.main()
