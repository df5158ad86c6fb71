"""The page of measured figures is written from a run's closing table, and says why a bound is not held."""

import re
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

import put_figures

PROJECT = Path(__file__).resolve().parents[3]
PAGE = PROJECT / "docs/performance.md"

OUTPUT = """Benchmark | a line of the run

NAME | ours | beside | ratio | bound | holds
one thing, seconds, beside another | 1 | 2 | 0.500 | 0.6 | holds
idle, MiB, beside a program | 3 | 2 | 1.500 | 1.1 | over
"""
FRAME = f"# Figures\n\n{put_figures.BEGIN}\nold\n{put_figures.END}\n\nWhy.\n"


class Figures(unittest.TestCase):
    def test_take_the_place_of_the_old_ones(self):
        page = put_figures.with_figures(FRAME, OUTPUT, "2026-01-02", "2 processors")

        self.assertEqual(
            f"# Figures\n\n{put_figures.BEGIN}\n"
            "Measured on 2026-01-02: 2 processors.\n\n"
            "| What, beside what | Karno | beside | ratio | bound | |\n|---|---|---|---|---|---|\n"
            "| one thing, seconds, beside another | 1 | 2 | 0.500 | 0.6 | holds |\n"
            "| idle, MiB, beside a program | 3 | 2 | 1.500 | 1.1 | **over** |\n"
            f"{put_figures.END}\n\nWhy.\n", page)

    def test_name_the_processors_and_the_system(self):
        self.assertRegex(put_figures.machine(), r"^\d+ processors \(.+\), \d+ GiB of memory, .+, kernel [\d.]+$")

    def test_are_not_written_from_a_run_without_a_table(self):
        with tempfile.TemporaryDirectory() as folder:
            page = Path(folder) / "page.md"
            page.write_text(FRAME, encoding="utf-8")

            told = subprocess.run([sys.executable, "-B", PROJECT / "tests/bench/test/put_figures.py", page],
                                  input="nothing\n", capture_output=True, text=True, check=False)

            self.assertEqual((1, "put_figures: there is no table of figures\n"), (told.returncode, told.stderr))
            self.assertEqual((FRAME, [page]), (page.read_text(encoding="utf-8"), list(Path(folder).iterdir())))

    def test_of_the_page_are_those_of_the_benchmarks(self):
        shown = re.findall(r"^\| (.+?) \| [\d.e+-]+ \|", PAGE.read_text(encoding="utf-8"), re.MULTILINE)
        expected = (PROJECT / "tests/bench/test/benchmarks_test.cpp").read_text(encoding="utf-8")
        measured = re.findall(r'^ +"(.+)"\)?\)?[,;]', expected.partition("UnorderedElementsAre(")[2].partition("TEST(")[0],
                              re.MULTILINE)

        self.assertGreater(len(measured), 25)
        self.assertEqual(sorted(set(measured) - {"NAME"}), sorted(shown))

    def test_that_are_over_are_explained_and_no_others(self):
        text = PAGE.read_text(encoding="utf-8")
        over = re.findall(r"^\| (.+?) \|.*\*\*over\*\* \|$", text, re.MULTILINE)
        explained = re.findall(r"^- \*\*(.+?)\*\*", text.partition("## What is over, and why")[2], re.MULTILINE)

        self.assertEqual(over, explained)


if __name__ == "__main__":
    unittest.main()
