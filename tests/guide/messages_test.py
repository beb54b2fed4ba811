#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""The table of messages in the manual is whole: every text in the source that the user can come to read is
in it, letter for letter, or is named here as no message; and every row is a text of the program.

usage: messages_test.py"""

import pathlib
import re
import sys
import unittest

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent))

from texts import texts  # noqa: E402

ROOT = pathlib.Path(__file__).resolve().parent.parent.parent
PAGE = ROOT / "docs" / "manual" / "96-messages.md"

# Folders whose texts have tables of their own: the errors of SCPI.
ELSEWHERE = {"scpi"}

# What is built with these is a caption, a tool tip, the filter of a file dialog, a message to a
# programmer (an exception that is never shown), or no text at all.
NO_MESSAGE_CALLS = {
    "AddButton", "AddCheck", "AddFrequencyAndPads", "AddLabel", "AddList", "AddMenuItem", "AddOpener",
    "AddOptions", "AddProgress", "AddSearch", "AddText", "Choose", "DataDialog", "Draw", "Form", "Heading",
    "Invite", "Item", "Keys", "KitDialog", "PlainWindow", "PowerTestForm", "QStringLiteral", "Section",
    "Step", "Submenu", "AddPreset", "Tip", "Unit", "add", "addAction", "addButton", "getExistingDirectory",
    "getOpenFileName", "kPanelLooks", "logic_error", "methods", "runtime_error", "setStyleSheet",
    "setToolTip", "setWindowTitle", "static_assert", "verdict"}

# A text in one of these is a message, whatever else it is part of.
MESSAGE_CALLS = {"Ask", "AskToConnect", "Failure", "Refuse", "Refused", "Say", "ShowWithTime", "SetPanel",
                 "ShowBriefly", "ShowMessage", "ShowFailure", "refuse", "refused"}

# Files that hold what is written, drawn or listed, and no message: their texts are contents. A message
# in them (MESSAGE_CALLS) is looked for all the same.
CONTENTS = {
    "app/bench_window.cpp": "what the bench can connect",
    "app/player.cpp": "the steps of the play",
    "control/quality_bands.cpp": "words beside the title of a graph",
    "control/report.cpp": "headings and facts of a report",
    "control/system_log.cpp": "lines of the log",
    "core/vocabulary.h": "words of lists and files",
    "display/frame.cpp": "titles of graphs",
    "display/marker_table.cpp": "read-outs of markers",
    "files/cal_info.cpp": "the first line of a file",
    "files/measurement_text.cpp": "a measurement file",
    "files/provenance.cpp": "where saved values come from",
    "files/report_settings.h": "the title of a report before one is chosen",
    "files/statistics_csv.cpp": "a CSV file",
    "files/session_compare.cpp": "names of settings",
    "files/touchstone2_text.cpp": "a Touchstone file",
    "forms/graph_menu.cpp": "a menu",
    "forms/hints.cpp": "explanations: the page How far to trust a number",
    "link/command_set.h": "commands to the instrument",
    "quality/cal_check.cpp": "names of terms and methods",
    "quality/quality_state.cpp": "what an uncertainty rests on",
    "trace/band.cpp": "read-outs",
    "ui/help_viewer.cpp": "the list of keys",
    "utilities/am_to_pm.cpp": "a plot and a text file",
    "utilities/cal_terms_text.cpp": "a text file",
    "utilities/compression.cpp": "a plot and a text file",
    "utilities/hardware_info.cpp": "the identity of the instrument",
}

# Single texts that are no messages.
NO_MESSAGES = {
    # words of files and keywords of Touchstone
    "QK47-20-09 batch 1", "QK47-20-09 SN", "begin information", "end information", "matrix format",
    "mixed-mode order", "network data", "noise data", "number of frequencies",
    "number of noise frequencies", "number of ports", "two-port data order", "two-port order",
    # replies of the text front panel
    "enabled", "disabled", "shown", "hidden", "data", "memory", "! message", "off", "on",
    # units, and places before a reason
    "bytes", "pixels", "days", "line 1",
    # captions and names in a window, and what a window shows of the session
    "(session in force)", ", in the unit that the channel shows", "Data file", "Data trace / mkr readout",
    "General text", "Grid lines", "Limit lines", "Lower limit", "Memory trace", "New kit", "Port 1 Load",
    "Port 1 Open", "Port 1 Short", "Port 2 Load", "Port 2 Open", "Port 2 Short", "Reference plane", "Save As",
    "Start MHz", "Stop MHz", "The last checks:", "Upper limit", "V1.62 Mar 09", "Residual terms",
    # lines of the log
    "RX Levels:", "RX xTalk:", "Synth Range:", "Test Levels:", "dc Offset:",
    # headings of the manual
    "Echoes fold back", "Interpolated calibration", "Old or warmed calibration",
    # the name of a typeface, commands to the bench, the address of remote control, its client
    "DejaVu Sans", "follow off", "follow on", "scpi: 127.0.0.1:", "standard input", "through standard of kit",
}
# The list of options, and the filter of a file dialog.
NOT_READ = re.compile(r"^qk47-vna: control program of|\|\*\.")

# Words that look like a text to read: two words, or one that ends or begins a sentence.
READABLE = re.compile(r"[A-Za-z]{2,}[^A-Za-z]* [^A-Za-z]*[A-Za-z]|[A-Za-z]{3,}[.!?]$|^ [a-z]{2,}|[a-z]{2,}[:,;] ?$")
ROW = re.compile(r"^\| `(.*?)` \| (.*?) \| (.*?) \| (.*?) \|$")
CELL_END = re.compile(r"(?<!\\)\|")


def flat(text):
    return " ".join(text.replace("\n", " ").replace("\r", " ").replace("\t", " ").split())


def rows(page):
    """(message, place) of each row."""
    return [(found[1].replace("\\|", "|"), found[2]) for found in map(ROW.match, page.splitlines()) if found]


def is_message(name, text):
    if NOT_READ.search(text.text):
        return False
    calls = set(text.calls)
    if calls & MESSAGE_CALLS:
        return bool(re.search("[A-Za-z]{2}", text.text))
    if calls & NO_MESSAGE_CALLS or CONTENTS.get(name):
        return False
    return bool(READABLE.search(text.text))


def source_texts(folder):
    for path in sorted(folder.rglob("*")):
        name = path.relative_to(folder).as_posix()
        if path.suffix in (".h", ".cpp") and name.split("/")[0] not in ELSEWHERE:
            for text in texts(path.read_text(encoding="utf-8")):
                yield name, text


class Messages(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.rows = rows(PAGE.read_text(encoding="utf-8"))
        cls.source = list(source_texts(ROOT / "src"))

    def test_every_message_is_in_the_table(self):
        pieces = {flat(piece) for message, place in self.rows
                  for text in (message, *re.split("; ", place)) for piece in text.split("…")}
        everything = "\n".join(pieces)
        missing = [f"src/{name}:{text.line}: \"{flat(piece)}\""
                   for name, text in self.source if is_message(name, text)
                   for piece in re.split("%[sd]", text.text)
                   if flat(piece) not in NO_MESSAGES
                   and flat(piece).removeprefix(": ") not in everything]
        self.assertFalse(missing, "not in docs/manual/96-messages.md (text, cause, remedy):\n"
                         + "\n".join(missing))

    def test_every_row_is_a_text_of_the_program(self):
        everything = "\n".join(flat(text.text) for _, text in self.source)
        dead = [f"{message}: no \"{flat(piece)}\"" for message, _ in self.rows
                for piece in message.split("…") if flat(piece).strip(": ") not in everything]
        self.assertFalse(dead, "\n".join(dead))

    def test_each_message_has_one_row_at_its_place_with_cause_and_remedy(self):
        self.assertGreater(len(self.rows), 250)
        self.assertEqual(len(self.rows), len(set(self.rows)))
        tables = [line for line in PAGE.read_text(encoding="utf-8").splitlines()
                  if line.startswith("| ") and not line.startswith("| Message ")]
        self.assertEqual(len(tables), len(self.rows), "a row has another form")
        for line in tables:
            self.assertTrue(all(cell.strip() for cell in CELL_END.split(line)[1:-1]), line)

    def test_what_is_called_no_message_is_still_there(self):
        there = {flat(piece) for _, text in self.source for piece in re.split("%[sd]", text.text)}
        self.assertEqual([text for text in NO_MESSAGES if text not in there], [])
        names = {name for name, _ in self.source}
        self.assertEqual([name for name in CONTENTS if name not in names], [])


class TheRules(unittest.TestCase):
    """A message cannot be written so that it is not found."""

    def of(self, source, name="forms/x.cpp"):
        return [text.text for text in texts(source) if is_message(name, text)]

    def test_a_box_is_found_with_its_title(self):
        self.assertEqual(self.of('host.prompts.ShowMessage("Title", "Text", Icon::None);'), ["Title", "Text"])

    def test_a_text_in_two_lines_is_one(self):
        self.assertEqual(self.of('return Failure{"one "\n  // said\n  "two", {}};'), ["one two"])

    def test_a_text_that_is_kept_in_a_constant_or_returned_is_found(self):
        self.assertEqual(self.of('constexpr const char* kText = "Do this first";'), ["Do this first"])
        self.assertEqual(self.of('return " ends too soon";'), [" ends too soon"])
        self.assertEqual(self.of('std::string why = ok ? "" : "not now, later";'), ["not now, later"])

    def test_a_message_is_found_inside_what_is_no_message_and_in_a_file_of_contents(self):
        self.assertEqual(self.of('AddButton("Command1", "Go", [this] { host_.prompts.ShowMessage(kTitle, "Stop!"); })'),
                         ["Stop!"])
        self.assertEqual(self.of('return Failure{"cannot be"};', "core/vocabulary.h"), ["cannot be"])

    def test_captions_tips_and_includes_are_none(self):
        self.assertEqual(self.of('#include "a b.h"\nAddText("Text1", "Start at").Tip("First frequency");'), [])

    def test_escapes_and_raw_texts_are_read(self):
        self.assertEqual(self.of(r'ShowMessage(k, "on \"b\"\nc");'), ['on "b"\nc'])
        self.assertEqual(self.of('ShowMessage(k, R"x(raw "text")x");'), ['raw "text"'])


if __name__ == "__main__":
    unittest.main()
