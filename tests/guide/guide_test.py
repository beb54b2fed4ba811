#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""The guides: what the PDF generator refuses, and the content of the manual's PDF.

usage: guide_test.py BUILD     (a folder with UsersManual.pdf; needs pdftotext and pdftoppm)"""

import pathlib
import re
import subprocess
import sys
import tempfile
import unittest

import pypdf

BUILD = pathlib.Path(sys.argv.pop(1)).resolve()
ROOT = pathlib.Path(__file__).resolve().parent.parent.parent
MANUAL = ROOT / "docs" / "manual"
MAKER = ROOT / "tools" / "guide" / "guide.py"
sys.path += [str(ROOT / "tools" / "guide")]
sys.dont_write_bytecode = True

import guide  # noqa: E402
import pictures  # noqa: E402

PICTURE = MANUAL / "pictures" / "prompt.png"
LEAST_FILL = 0.4  # of the height of the text


def listed():
    """[(part, [(title, page)])] of the manual's list of pages."""
    parts = []
    for line in (MANUAL / "README.md").read_text(encoding="utf-8").splitlines():
        if line.startswith("## "):
            parts.append((line[3:], []))
        elif found := re.match(r"- \[(.*)\]\((.*\.md)\)", line):
            parts[-1][1].append((found[1], found[2]))
    return parts


def headings(path, rank):
    """The headings of a page, code left out."""
    text = re.sub(r"^```.*?^```$", "", path.read_text(encoding="utf-8"), flags=re.MULTILINE | re.DOTALL)
    return re.findall(rf"^{'#' * rank} (.+)$", text, flags=re.MULTILINE)


class Manual(unittest.TestCase):
    """The PDF as it was built."""

    @classmethod
    def setUpClass(cls):
        cls.pdf = pypdf.PdfReader(BUILD / "UsersManual.pdf")
        text = subprocess.run(["pdftotext", "-layout", BUILD / "UsersManual.pdf", "-"], check=True,
                              capture_output=True, text=True).stdout
        cls.text = text.split("\f")[:-1]
        cls.number = {page.indirect_reference.idnum: n for n, page in enumerate(cls.pdf.pages)}

    def outline(self):
        """(depth, title, page) of each bookmark."""
        found = []

        def walk(entries, depth):
            for entry in entries:
                if isinstance(entry, list):
                    walk(entry, depth + 1)
                else:
                    found.append((depth, entry.title, self.pdf.get_destination_page_number(entry)))

        walk(self.pdf.outline, 0)
        return found

    def test_bookmarks_are_the_parts_numbered_chapters_and_numbered_sections(self):
        wanted, number = [(0, "Contents")], 0
        for part, pages in listed():
            wanted.append((0, part))
            for title, page in pages:
                number += 1
                wanted.append((1, f"{number} {title}"))
                wanted += [(2, f"{number}.{n} {text}")
                           for n, text in enumerate(headings(MANUAL / page, 2), 1)]
        self.assertEqual([(depth, title) for depth, title, _ in self.outline()], wanted)

    def test_a_bookmark_leads_to_the_page_of_its_heading(self):
        for _, title, page in self.outline():
            plain = "".join(title.split())
            self.assertIn(plain, "".join(self.text[page].split()), title)

    def test_the_title_has_version_and_date(self):
        self.assertRegex(self.text[0], r"Version \d+\.\d+\.\d+, \d{4}-\d\d-\d\d")
        self.assertEqual(self.pdf.metadata.title, "QK47-20-09 VNA Control: User's Manual")

    def test_the_language_is_told(self):
        self.assertEqual(self.pdf.trailer["/Root"].get("/Lang"), "en")

    def test_author_subject_and_keywords_are_told_and_the_text_is_tagged(self):
        self.assertEqual(self.pdf.metadata.author, "the QK47-20-09 VNA Control developers")
        self.assertRegex(self.pdf.metadata.subject, r"^User's Manual of QK47-20-09 VNA Control, version \d")
        self.assertIn("vector network analyser", self.pdf.metadata["/Keywords"])
        root = self.pdf.trailer["/Root"]
        self.assertTrue(root["/MarkInfo"]["/Marked"])
        self.assertIn("/StructTreeRoot", root)

    def places(self):
        """(depth, title, page, how far down its sheet) of each bookmark."""
        def walk(entries, depth):
            for entry in entries:
                if isinstance(entry, list):
                    yield from walk(entry, depth + 1)
                else:
                    page = self.pdf.get_destination_page_number(entry)
                    height = float(self.pdf.pages[page].mediabox.height)
                    yield depth, entry.title, page, 1 - float(entry.top) / height
        return list(walk(self.pdf.outline, 0))

    def test_no_chapter_begins_below_the_middle_and_no_section_in_the_last_quarter_of_a_sheet(self):
        for depth, title, page, down in self.places():
            self.assertLess(down, 0.58 if depth == 1 else 0.75, f"{title}, page {page + 1}")

    def test_the_head_of_a_sheet_names_the_chapter_at_its_top(self):
        chapters = [(page, down, title) for depth, title, page, down in self.places() if depth == 1]
        parts = {page for depth, _, page, _ in self.places() if depth == 0}  # a part's name, then its chapter
        for number, text in enumerate(self.text):
            if number < chapters[0][0]:
                continue
            top = [title for page, down, title in chapters
                   if page == number and (down < 0.1 or page in parts)]
            before = [title for page, _, title in chapters if page < number]
            wanted = top[0] if top else before[-1]
            head = next(line for line in text.splitlines() if line.strip())
            self.assertTrue(" ".join(head.split()).endswith(" ".join(wanted.split())),
                            f"page {number + 1}: {head}, not {wanted}")

    def test_the_head_of_a_table_is_not_left_with_less_than_three_lines_at_the_foot_of_a_sheet(self):
        heads = set()
        for path in MANUAL.glob("[0-9]*.md"):
            for head in re.findall(r"^\|(.+)\|\n\|-", path.read_text(encoding="utf-8"), flags=re.MULTILINE):
                words = [cell.strip() for cell in head.split("|")]
                if all(words):
                    heads.add(r"^ *" + r" {2,}".join(map(re.escape, words)) + "$")
        self.assertGreater(len(heads), 15)
        found = 0
        for number, text in enumerate(self.text, 1):
            lines = [line for line in text.splitlines() if line.strip()][:-1]  # without the number
            for at, line in enumerate(lines):
                if any(re.match(head, line) for head in heads):
                    found += 1
                    self.assertGreaterEqual(len(lines) - at - 1, 3, f"page {number}: {line.strip()}")
        self.assertGreater(found, 60)

    def links(self, page):
        for annotation in page.get("/Annots") or ():
            annotation = annotation.get_object()
            if annotation["/Subtype"] == "/Link":
                yield annotation

    def test_the_contents_and_the_pages_are_linked_and_every_link_leads_somewhere(self):
        names = self.pdf.named_destinations
        counts = []
        for page in self.pdf.pages:
            links = list(self.links(page))
            for link in links:
                action = link.get("/A")
                if action is not None and "/URI" in action:
                    self.assertRegex(action["/URI"], "^https?://")
                    continue
                self.assertIn(link.get("/Dest") or action["/D"], names)
            counts.append(len(links))
        entries = sum(1 for depth, _, _ in self.outline() if depth > 0)
        first = next(page for _, title, page in self.outline() if title == listed()[0][0])
        self.assertGreaterEqual(sum(counts[1:first]), entries, "contents")
        self.assertGreater(sum(counts[first:]), 150, "links between pages")

    def test_no_page_names_a_file_of_markdown_that_the_reader_has_not(self):
        for number, text in enumerate(self.text, 1):
            self.assertNotRegex(text, r"\w\.md\b", f"page {number}")

    def test_no_sentence_is_broken_so_that_its_number_begins_a_list(self):
        for path in sorted(MANUAL.glob("*.md")):
            self.assertNotRegex(path.read_text(encoding="utf-8"), r"(?m)^\d+\) ", path.name)

    def test_a_word_behind_the_page_number_of_a_link_has_its_blank(self):
        for number, text in enumerate(self.text, 1):
            self.assertNotRegex(text, r"\(page \d+\)\w", f"page {number}")

    def test_every_picture_has_its_name_on_its_page(self):
        names = ["".join(name.split()) for _, pages in listed() for _, page in pages for name in
                 re.findall(r"^!\[([^]]*)\]", (MANUAL / page).read_text(encoding="utf-8"),
                            flags=re.MULTILINE)]
        self.assertGreater(len(names), 30)
        flat = ["".join(text.split()) for text in self.text]
        pictures_on = [sum(1 for name in page["/Resources"].get("/XObject", {})) for page in self.pdf.pages]
        for name in names:
            self.assertTrue(any(name in text and pictures_on[n] for n, text in enumerate(flat)), name)

    def test_no_page_but_the_last_of_a_part_is_under_two_fifths_full(self):
        starts = [page for depth, _, page in self.outline() if depth == 0]
        allowed = {0, *(page - 1 for page in starts), len(self.pdf.pages) - 1}
        with tempfile.TemporaryDirectory() as folder:
            subprocess.run(["pdftoppm", "-r", "12", "-gray", BUILD / "UsersManual.pdf",
                            pathlib.Path(folder, "p")], check=True)
            for number, path in enumerate(sorted(pathlib.Path(folder).glob("*.pgm"))):
                if number in allowed:
                    continue
                self.assertGreaterEqual(fill(path.read_bytes()), LEAST_FILL, f"page {number + 1}")


def fill(picture):
    """How far down the ink of a page's text reaches: 0 to 1 between head and foot line (PGM)."""
    _, size, _, rows = picture.split(b"\n", 3)
    width, height = map(int, size.split())
    top, foot = round(height * 24 / 297), round(height * (297 - 20) / 297)
    last = max((y for y in range(top, foot) if min(rows[y * width:(y + 1) * width]) < 200), default=top)
    return (last - top) / (foot - top)


class Pictures(unittest.TestCase):
    def used(self):
        return [name for path in [*MANUAL.glob("[0-9]*.md"), ROOT / "README.md"]
                for name in re.findall(r"pictures/([\w-]+)\.png", path.read_text(encoding="utf-8"))]

    def test_every_picture_is_used_and_made_by_the_one_command(self):
        there = {path.stem for path in (MANUAL / "pictures").glob("*.png")}
        self.assertEqual(there, pictures.names())
        self.assertEqual(set(self.used()), there)

    def test_every_window_of_the_program_has_its_picture(self):
        text = (ROOT / "docs" / "control-names.md").read_text(encoding="utf-8")
        windows = set(re.findall(r"^## (\w+)", text, flags=re.MULTILINE))
        self.assertEqual(set(pictures.PICTURE_OF) | pictures.WITHOUT_PICTURE, windows)
        self.assertFalse(set(pictures.PICTURE_OF) & pictures.WITHOUT_PICTURE)


class Documents(unittest.TestCase):
    def test_every_link_of_every_document_leads_to_a_file_and_a_heading(self):
        count = 0
        for path in [*ROOT.glob("*.md"), *ROOT.glob("docs/*.md"), *MANUAL.glob("*.md")]:
            text = re.sub(r"^```.*?^```$", "", path.read_text(encoding="utf-8"),
                          flags=re.MULTILINE | re.DOTALL)
            for target in re.findall(r"\]\(([^)\s]+)\)", text):
                if target.startswith(guide.NOTHING):
                    continue
                file, _, place = target.partition("#")
                other = (path.parent / file).resolve() if file else path
                with self.subTest(path.relative_to(ROOT).as_posix(), target=target):
                    self.assertTrue(other.exists())
                    if place:
                        places = [guide.anchor(text) for rank in (1, 2, 3) for text in headings(other, rank)]
                        self.assertIn(place, places)
                count += 1
        self.assertGreater(count, 200)


class Maker(unittest.TestCase):
    """Small guides: what they look like, and what is refused."""

    def setUp(self):
        self.folder = tempfile.TemporaryDirectory()
        self.addCleanup(self.folder.cleanup)
        self.path = pathlib.Path(self.folder.name)

    def make(self, first="10-page.md", **pages):
        for name, text in pages.items():
            self.path.joinpath(name).write_text(text, encoding="utf-8")
        done = subprocess.run([sys.executable, "-B", MAKER, self.path / "out.pdf", "Title: Kind", "1.2.3",
                               self.path / first], capture_output=True, text=True, check=False)
        if done.returncode == 0:
            return [page.extract_text() for page in pypdf.PdfReader(self.path / "out.pdf").pages]
        self.assertFalse((self.path / "out.pdf").exists())
        return done.stderr

    def refused(self, text):
        return self.make(**{"10-page.md": text})

    def test_what_is_wrong_with_the_pages_is_reported_and_nothing_is_written(self):
        told = self.make("README.md", **{
            "README.md": "- [Nowhere](05-a.md)\n## Part\n- [One](10-page.md)\n- [Other](20-two.md)\n",
            "10-page.md": "# One\n\n[x](20-two.md#here) [y](30-gone.md) [z](#there)\n\n![p](no.png)\n",
            "20-two.md": "# Two\n\n## Same\n\n## Same\n",
            "40-new.md": "# New\n"})
        self.assertEqual(told.splitlines(), [f"guide.py: {line}" for line in (
            "README.md: 05-a.md is in no part",
            'README.md: 20-two.md is called "Two"',
            "README.md: 40-new.md is not in the list",
            "10-page.md: there is no heading for 20-two.md#here",
            "10-page.md: 30-gone.md is not in this guide",
            "10-page.md: there is no heading for #there",
            "10-page.md: there is no picture no.png",
            "20-two.md: two headings have the place #same")])

    def test_a_page_without_a_heading_is_refused(self):
        self.assertIn("10-page.md: no heading of the first rank", self.refused("Text.\n"))

    def test_rows_headings_and_pictures_stay_whole_and_with_what_belongs_to_them(self):
        words = "text that goes on and on until it needs a second line of its cell and more"
        page = "# Test\n\n"
        for n in range(6):
            page += "Pad.\n\n" * (7 * n + 3)
            page += "| Head | Other |\n|---|---|\n" + "".join(
                f"| row{n}x{i} begins | {words} end{n}x{i} |\n" for i in range(25))
            page += "\n" + "Pad.\n\n" * (5 * n) + f"## Heading {n}\n\nThe text of heading {n}.\n\n"
            page += f"Above picture {n}.\n\n![The name {n}]({PICTURE})\n\n"
        sheets = self.make(**{"10-page.md": page})
        self.assertGreater(len(sheets), 8)
        for sheet in sheets:
            flat = " ".join(sheet.split())
            for n in range(6):
                for i in range(25):
                    self.assertEqual(bool(re.search(rf"row{n}x{i}\b", flat)),
                                     bool(re.search(rf"end{n}x{i}(?!\d)", flat)), (n, i, flat))
                self.assertEqual(f"Heading {n}" in flat, f"The text of heading {n}." in flat)
                self.assertEqual(f"Above picture {n}." in flat, f"The name {n}" in flat)
            for n in range(6):
                rows = len(re.findall(rf"row{n}x", flat))
                self.assertNotIn(rows, (1, 2), f"table {n}: rows alone on a sheet")
            if re.search(r"row\dx", flat):
                self.assertIn("Head Other", flat)


if __name__ == "__main__":
    unittest.main()
