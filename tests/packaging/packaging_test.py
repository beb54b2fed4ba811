#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""The files around the programs agree with the programs and with each other."""

import configparser
import pathlib
import re
import subprocess
import sys
import tempfile
import unittest
import xml.etree.ElementTree as xml

VNA, SIM, ROOT = "", "", pathlib.Path()


def options_of_help(program):
    text = subprocess.run([program, "--help"], capture_output=True, text=True, check=True).stdout
    return set(re.findall(r"^  (--[a-z]+)", text, re.MULTILINE))


def mime_types():
    name = "{http://www.freedesktop.org/standards/shared-mime-info}"
    tree = xml.parse(ROOT / "packaging" / "qk47-vna.xml")
    return {entry.get("type"): entry for entry in tree.iter(f"{name}mime-type")}, name


class Packaging(unittest.TestCase):
    def programs(self):
        return (("qk47-vna", VNA), ("qk47-sim", SIM))

    def test_the_manual_pages_have_every_option_and_no_other(self):
        for name, program in self.programs():
            page = (ROOT / "packaging" / "man" / f"{name}.1.in").read_text(encoding="utf-8")
            headings = re.findall(r"^\.TP\n(.*)$", page, re.MULTILINE)
            told = {option for heading in headings
                    for option in re.findall(r"--[a-z]+", heading.replace("\\-", "-"))}
            self.assertEqual(told, options_of_help(program), name)

    def complete(self, name, *words):
        """What bash offers for the last of words."""
        script = (f'source "{ROOT}/packaging/completion/{name}"; COMP_WORDS=("$@"); '
                  f'COMP_CWORD=$(($# - 1)); _{name.replace("-", "_")}; '
                  'printf "%s\\n" "${COMPREPLY[@]}"')
        result = subprocess.run(["bash", "-c", script, "bash", name, *words], capture_output=True,
                                text=True, check=True, cwd=self.folder)
        return {line for line in result.stdout.splitlines() if line}

    def test_completion_offers_every_option_and_no_other(self):
        for name, program in self.programs():
            self.assertEqual(self.complete(name, "--"), options_of_help(program), name)

    def test_completion_offers_files_that_can_be_opened_folders_and_values(self):
        for file in ("a b.cal", "c.S2P", "d.txt", "e.s1p"):
            (pathlib.Path(self.folder) / file).touch()
        (pathlib.Path(self.folder) / "folder").mkdir()
        self.assertEqual(self.complete("qk47-vna", ""), {"a b.cal", "c.S2P", "e.s1p", "folder"})
        self.assertEqual(self.complete("qk47-vna", "--folder", "f"), {"folder"})
        self.assertEqual(self.complete("qk47-vna", "--folder", "=", "f"), {"folder"})
        self.assertEqual(self.complete("qk47-vna", "--script", "d"), {"d.txt"})
        self.assertEqual(self.complete("qk47-vna", "--pace", "f"), {"fast"})
        self.assertEqual(self.complete("qk47-vna", "--scpi", "="), {"5025"})
        self.assertEqual(self.complete("qk47-vna", "--scpi", ""), {"-"})
        self.assertEqual(self.complete("qk47-sim", "--firmware", "1.0"), {"1.0", "1.05"})

    def test_menu_file_types_and_description_name_the_same_types(self):
        entry = configparser.ConfigParser(interpolation=None)
        entry.optionxform = str
        entry.read(ROOT / "packaging" / "qk47-vna.desktop", encoding="utf-8")
        types, _ = mime_types()
        self.assertEqual(set(entry["Desktop Entry"]["MimeType"].strip(";").split(";")), set(types))
        described = xml.parse(ROOT / "packaging" / "qk47-vna.metainfo.xml.in")
        self.assertEqual({node.text for node in described.iter("mediatype")}, set(types))
        self.assertEqual({node.text for node in described.iter("launchable")},
                         {"qk47-vna.desktop"})

    def test_session_files_begin_as_their_file_type_says(self):
        types, name = mime_types()
        first = types["application/x-qk47-session"].find(f"{name}magic/{name}match")
        self.assertEqual(first.get("offset"), "0")
        sessions = sorted((ROOT / "tests" / "data" / "sessions").glob("*.cal"))
        self.assertGreater(len(sessions), 10)
        for session in sessions:
            self.assertTrue(session.read_bytes().startswith(first.get("value").encode()), session)

    def test_the_changelog_of_the_package_is_of_the_version(self):
        text = (ROOT / "packaging" / "changelog.Debian.in").read_text(encoding="utf-8")
        self.assertTrue(text.startswith("qk47-vna (@PROJECT_VERSION@-1) "))

    def setUp(self):
        folder = tempfile.TemporaryDirectory(prefix="qk-packaging-")
        self.addCleanup(folder.cleanup)
        self.folder = folder.name


if __name__ == "__main__":
    VNA, SIM, ROOT = sys.argv[1], sys.argv[2], pathlib.Path(sys.argv[3])
    unittest.main(argv=sys.argv[:1], verbosity=2)
