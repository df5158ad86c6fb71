"""What is finished takes the place of its last version, also where the two cannot be exchanged."""

import tempfile
import unittest
from pathlib import Path
from unittest import mock

import damaged_bundle  # noqa: F401  makes what follows known
from packaging import placement


class Placement(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = Path(folder.name)
        self.finished = self.folder / "work/Karno.app"
        self.place = self.folder / "Karno.app"
        self.make(self.finished, "new")

    def make(self, app, content):
        app.mkdir(parents=True)
        (app / "content").write_text(content)

    def assert_new_alone(self):
        self.assertEqual("new", (self.place / "content").read_text())
        self.assertEqual([], list((self.folder / "work").iterdir()))

    def test_fills_an_empty_place(self):
        placement.put_in_place(self.finished, self.place)

        self.assert_new_alone()

    def test_removes_the_last_version(self):
        self.make(self.place, "old")

        placement.put_in_place(self.finished, self.place)

        self.assert_new_alone()

    def test_removes_the_last_version_where_folders_cannot_be_exchanged(self):
        self.make(self.place, "old")

        with mock.patch.object(placement, "exchange", return_value=False):
            placement.put_in_place(self.finished, self.place)

        self.assert_new_alone()

    def test_fails_without_a_change_when_there_is_nothing_to_exchange_with(self):
        with self.assertRaises(FileNotFoundError):
            placement.exchange(self.finished, self.place)

        self.assertEqual("new", (self.finished / "content").read_text())


if __name__ == "__main__":
    unittest.main()
