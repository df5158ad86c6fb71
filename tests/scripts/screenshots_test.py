"""The pictures in docs/screenshots show what the present build shows.

usage: screenshots_test.py BUNDLE PROGRAM
"""

import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

PROJECT = Path(__file__).resolve().parents[2]
SCREENSHOTS = PROJECT / "docs/screenshots"
LANGUAGES = sorted(folder.stem for folder in (PROJECT / "resources").glob("*.lproj") if folder.stem != "Base")

BUNDLE, PROGRAM = sys.argv[1:3]


def size_of(picture):
    told = subprocess.run(["identify", "-format", "%w %h", picture], capture_output=True, text=True, check=True)
    return tuple(map(int, told.stdout.split()))


def different_pixels(one, other):
    """How many differ by more than the drawing of one letter does from one time to the next."""
    told = subprocess.run(["compare", "-metric", "AE", "-fuzz", "5%", one, other, "null:"], capture_output=True,
                          text=True, check=False)
    return int(float(told.stderr))


def draw(tool, *words):
    subprocess.run([*tool, *words], stdin=subprocess.DEVNULL, capture_output=True, timeout=100, check=True)


class Screenshots(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.picture = Path(folder.name) / "picture.png"

    def crop(self, picture, place):
        cut = self.picture.with_name(f"{Path(picture).stem}-cut.png")
        subprocess.run(["convert", picture, "-crop", place, "+repage", cut], check=True)
        return cut

    def test_are_there_for_every_language(self):
        self.assertEqual(sorted(["session.png", *(f"windows.{one}.png" for one in ["en", *LANGUAGES])]),
                         sorted(file.name for file in SCREENSHOTS.iterdir()))

    def test_of_the_windows_are_current(self):
        draw([PROJECT / "tools/screenshots/draw-sheet"], self.picture, BUNDLE, PROGRAM, "en_US")

        old = SCREENSHOTS / "windows.en.png"
        self.assertEqual(size_of(old), size_of(self.picture))
        self.assertLess(different_pixels(old, self.picture), 50, "scripts/screenshots takes them anew")

    # Left, where no times stand, but for the number of a process.
    def test_of_the_session_is_current(self):
        draw([PROJECT / "tests/support/with_display.sh", PROJECT / "tools/screenshots/draw-session"], self.picture,
             BUNDLE)

        old = SCREENSHOTS / "session.png"
        self.assertEqual(size_of(old)[1], size_of(self.picture)[1])
        place = f"470x{size_of(old)[1] - 220}+0+220"
        self.assertLess(different_pixels(self.crop(old, place), self.crop(self.picture, place)), 400,
                        "scripts/screenshots takes it anew")


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
