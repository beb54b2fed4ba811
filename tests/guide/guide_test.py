#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""The maker of the guides, by what stands on the sheets of its PDFs.

usage: guide_test.py QK47-GUIDE     (needs pdftotext and pdfimages)"""

import pathlib
import subprocess
import sys
import tempfile
import unittest

GUIDE = sys.argv.pop(1)
ROOT = pathlib.Path(__file__).resolve().parent.parent.parent
PICTURE = ROOT / "docs" / "manual" / "pictures" / "prompt.png"


class Guide(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.TemporaryDirectory()
        self.addCleanup(self.folder.cleanup)
        self.pdf = pathlib.Path(self.folder.name) / "guide.pdf"

    def sheets(self, *pages):
        """What stands on each sheet of a guide of these pages, line by line, without the line at its
        head and the number at its foot."""
        files = []
        for n, text in enumerate(pages):
            files.append(pathlib.Path(self.folder.name) / f"{n:02}.md")
            files[-1].write_text(text)
        subprocess.run([GUIDE, self.pdf, "Title", *files], check=True, stderr=subprocess.DEVNULL)
        text = subprocess.run(["pdftotext", "-layout", self.pdf, "-"], check=True,
                              capture_output=True, text=True).stdout
        sheets = [[line.strip() for line in sheet.splitlines() if line.strip()]
                  for sheet in text.split("\f")[:-1]]
        return [sheet[1:-1] if sheet[0].startswith("Title ") else sheet for sheet in sheets]

    def test_one_chapter_has_no_sheet_with_a_list_of_chapters(self):
        self.assertEqual(self.sheets("# Alone\n\nText.\n"), [["Alone", "Text."]])

    def test_chapters_begin_on_the_sheets_that_the_list_names(self):
        sheets = self.sheets("# One\n\n" + "Text.\n\n" * 80, "# Two\n\nText.\n")
        listed = {line.split()[0]: int(line.split()[1]) for line in sheets[0][1:]}
        self.assertEqual(listed["One"], 2)
        self.assertGreater(listed["Two"], 3)
        for chapter, sheet in listed.items():
            self.assertEqual(sheets[sheet - 1][0], chapter)

    def test_a_table_leaves_no_row_alone_and_has_its_head_where_its_rows_are(self):
        counts = range(30, 42)
        sheets = self.sheets(*(f"# Test {n}\n\n| Head | Other |\n|---|---|\n"
                               + "".join(f"| row{i} | text |\n" for i in range(n)) + "\nAfter.\n"
                               for n in counts))[1:]
        self.assertGreater(len(sheets), len(counts), "no table breaks")
        for sheet in sheets:
            rows = [line for line in sheet if line.startswith("row")]
            heads = [line for line in sheet if line.startswith("Head")]
            self.assertNotEqual(len(rows), 1, sheet)
            self.assertEqual(len(heads), 1 if rows else 0, sheet)

    def test_a_row_of_several_lines_stands_on_one_sheet(self):
        words = "text that goes on and on until it needs a second line of its cell and more"
        sheets = self.sheets(*("# Test\n\n" + "Pad.\n\n" * n + "| Head | Other |\n|---|---|\n"
                               + "".join(f"| row{i} begins | {words} end{i} |\n" for i in range(25))
                               for n in range(4)))[1:]
        self.assertGreater(len(sheets), 4, "no table breaks")
        for sheet in sheets:
            text = " ".join(sheet)
            for i in range(25):
                self.assertEqual(f"row{i} " in text, f"end{i}" in text.split(), (i, sheet))

    def test_a_heading_stands_with_two_lines_of_its_text(self):
        words = "Words of the text, which go on and on until they fill three lines. " * 4
        for sheet in self.sheets(*("# Test\n\n" + "Pad.\n\n" * n + f"## Heading\n\n{words}\n"
                                   for n in range(25, 40))):
            if "Heading" in sheet:
                self.assertGreaterEqual(len(sheet) - sheet.index("Heading") - 1, 2, sheet)

    def test_no_line_ends_inside_an_option(self):
        for sheet in self.sheets(*("# Test\n\n" + "word " * n + "`--com` `--folder` " * 20 + "\n"
                                   for n in range(1, 19))):
            self.assertFalse([line for line in sheet if line.endswith("-")], sheet)

    def test_code_that_is_only_indented_is_there_whole(self):
        self.assertEqual(self.sheets("# Test\n\n    first line\n    second line\n\nText.\n"),
                         [["Test", "first line", "second line", "Text."]])

    def test_a_picture_is_without_loss_and_has_its_name_beneath_on_its_sheet(self):
        count = range(24, 36)
        sheets = self.sheets(*("# Test\n\n" + "Pad.\n\n" * n + f"![The name]({PICTURE})\n\nText.\n"
                               for n in count))
        listed = subprocess.run(["pdfimages", "-list", self.pdf], check=True, capture_output=True,
                                text=True).stdout.splitlines()[2:]
        self.assertEqual({line.split()[8] for line in listed}, {"image"})
        pages = [int(line.split()[0]) for line in listed]
        self.assertEqual(len(pages), len(count))
        for page in pages:
            self.assertIn("The name", sheets[page - 1])

    def test_a_page_without_a_heading_is_told(self):
        page = pathlib.Path(self.folder.name) / "page.md"
        page.write_text("Text.\n")
        done = subprocess.run([GUIDE, self.pdf, "Title", page], capture_output=True, text=True,
                              check=False)
        self.assertEqual(done.returncode, 1)
        self.assertIn("page.md: no heading of the first rank", done.stderr)


if __name__ == "__main__":
    unittest.main()
