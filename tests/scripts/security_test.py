"""Every test that docs/security.md names as the proof of a check is there."""

import re
import unittest
from pathlib import Path

PROJECT = Path(__file__).resolve().parents[2]
NAMED = re.compile(r"`([A-Z]\w+)\.([A-Z]\w+)`")
WRITTEN = re.compile(r"^TEST(?:_F|_P)?\(\s*(\w+),\s*(\w+)\s*\)", re.MULTILINE)


class ProofsOfSecurity(unittest.TestCase):
    def setUp(self):
        self.text = (PROJECT / "docs/security.md").read_text()

    def test_are_tests_that_exist(self):
        sources = (file.read_text() for file in (PROJECT / "tests").rglob("*_test.cpp"))
        written = {case for source in sources for case in WRITTEN.findall(source)}

        missing = sorted(set(NAMED.findall(self.text)) - written)

        self.assertEqual([], missing)

    def test_are_named_in_every_row_of_the_attacks(self):
        section = self.text.split("## What is stopped, and by what")[1].split("\n## ")[0]
        rows = [line for line in section.splitlines() if line.startswith("| ")][1:]

        without = [row for row in rows if not NAMED.search(row.split("|")[3])]

        self.assertGreater(len(rows), 10)
        self.assertEqual([], without)


if __name__ == "__main__":
    unittest.main()
