"""The bundle carries the notices of every library that its programs name, and of those whose code is compiled in.

usage: notices_test.py BUNDLE
"""

import re
import subprocess
import sys
import unittest
from pathlib import Path

PROJECT = Path(__file__).resolve().parents[2]
BUNDLE = Path(sys.argv[1])
PROGRAMS = ("MacOS/Karno", "MacOS/karnoctl", "Helpers/karno-installer")
# The C library belongs to the system.
OF_THE_SYSTEM = {"libc", "libm", "ld-linux-x86-64", "ld-linux-aarch64"}


def libraries_of(program):
    told = subprocess.run(["readelf", "-d", BUNDLE / "Contents" / program], capture_output=True, text=True, check=True)
    return set(re.findall(r"NEEDED.*\[(.+?)\.so", told.stdout)) - OF_THE_SYSTEM


def headings_in(notices):
    return re.findall(r"^==== (.+) ====$", notices, re.MULTILINE)


class Notices(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.text = (BUNDLE / "Contents/Resources/Notices.txt").read_text(encoding="utf-8")

    def test_begin_with_the_licence_of_karno(self):
        self.assertTrue(self.text.startswith((PROJECT / "LICENSE").read_text(encoding="utf-8")))

    def test_name_each_library_of_a_program(self):
        named = " ".join(headings_in(self.text))
        wanted = set().union(*map(libraries_of, PROGRAMS))

        self.assertGreater(len(wanted), 8)
        self.assertEqual([], sorted(one for one in wanted if one not in named))

    def test_name_what_is_compiled_in(self):
        self.assertEqual(["{fmt}", "nlohmann-json"], headings_in(self.text)[:2])

    def test_have_a_copyright_and_a_licence_below_each_name(self):
        for notice in re.split(r"^==== ", self.text, flags=re.MULTILINE)[1:]:
            with self.subTest(library=notice.partition(" ====")[0]):
                self.assertRegex(notice, "(?i)copyright")
                self.assertRegex(notice, "(?i)permission|licen[cs]e")


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
