"""The icon file of macOS holds what the vectors show, in every size."""

import struct
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

from damaged_bundle import PROJECT
from bundle_check import icon

sys.path.insert(0, str(PROJECT / "tools/icon"))
from icns import picture  # noqa: E402

VECTORS = PROJECT / "resources/icon/karno.svg"
SMALL = PROJECT / "resources/icon/small.css"


def drawn(folder, vectors=VECTORS):
    """(exit status, the icon file)."""
    file = Path(folder) / "Karno.icns"
    run = subprocess.run([PROJECT / "tools/icon/draw-icns", "rsvg-convert", vectors, SMALL, file],
                         stderr=subprocess.DEVNULL)
    return run.returncode, file


def plain_picture(entries, colours, mask):
    """Red, green, blue and alpha of each pixel of a picture that is no PNG."""
    channels = unpacked(entries[colours])
    size = len(channels) // 3
    return list(zip(channels[:size], channels[size : 2 * size], channels[2 * size :], entries[mask]))


def unpacked(coded):
    found = bytearray()
    while coded:
        count, coded = coded[0], coded[1:]
        found += coded[: count + 1] if count < 128 else coded[:1] * (count - 125)
        coded = coded[count + 1 :] if count < 128 else coded[1:]
    return bytes(found)


def output_of(command):
    return subprocess.run(command, shell=True, check=True, stdout=subprocess.PIPE).stdout


def pixels_seen_by_another_program(size):
    pixels = output_of(
        f"rsvg-convert -w {size} -h {size} --stylesheet '{SMALL}' '{VECTORS}' | convert png:- -depth 8 rgba:-")
    return list(struct.iter_unpack("4B", pixels))


def png_with_rows(kind):
    """A PNG picture whose rows are all stored by the one method, or for 5 each by another."""
    return output_of(f"rsvg-convert -w 24 -h 24 '{VECTORS}' | convert png:- -define png:compression-filter={kind} png32:-")


class Icon(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = folder.name

    def test_has_a_whole_picture_of_every_size(self):
        status, file = drawn(self.folder)

        self.assertEqual(0, status)
        self.assertEqual([], list(icon.findings(file, "Karno.icns")))

    def test_has_nothing_else(self):
        _, file = drawn(self.folder)

        wanted = {kind for _, kind, _ in icon.PNG_PICTURES} | {kind for row in icon.PLAIN_PICTURES for kind in row[1:3]}
        self.assertEqual(wanted, icon.entries(file.read_bytes()).keys())

    def test_has_the_right_pixels_where_they_are_no_png(self):
        _, file = drawn(self.folder)

        entries = icon.entries(file.read_bytes())
        self.assertEqual(pixels_seen_by_another_program(16), plain_picture(entries, b"is32", b"s8mk"))
        self.assertEqual(pixels_seen_by_another_program(32), plain_picture(entries, b"il32", b"l8mk"))

    def test_is_made_of_pictures_whose_rows_are_stored_in_any_way(self):
        wanted = output_of(f"rsvg-convert -w 24 -h 24 '{VECTORS}' | convert png:- -depth 8 rgba:-")

        for kind in range(6):
            with self.subTest(kind):
                self.assertEqual(wanted, picture.pixels(png_with_rows(kind)))

    def test_is_the_same_each_time(self):
        _, file = drawn(self.folder)
        first = file.read_bytes()

        drawn(self.folder)

        self.assertEqual(first, file.read_bytes())

    def test_is_left_as_it_was_when_the_vectors_are_damaged(self):
        _, file = drawn(self.folder)
        first = file.read_bytes()
        damaged = Path(self.folder) / "damaged.svg"
        damaged.write_text("<svg")

        status, _ = drawn(self.folder, damaged)

        self.assertEqual((1, first), (status, file.read_bytes()))


if __name__ == "__main__":
    unittest.main()
