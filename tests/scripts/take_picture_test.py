"""A picture of a window that has gone is a failure that is told, not a wait without end."""

import subprocess
import tempfile
import unittest
from pathlib import Path

PROJECT = Path(__file__).resolve().parents[2]

# Names a window that is not there any more, as when it goes between the look and the picture.
LOST_WINDOW = "#!/bin/sh\necho 16777216\n"


class TakePicture(unittest.TestCase):
    def test_of_a_window_that_has_gone_fails(self):
        with tempfile.TemporaryDirectory() as folder:
            finder = Path(folder) / "xdotool"
            finder.write_text(LOST_WINDOW)
            finder.chmod(0o755)
            picture = Path(folder) / "window.png"
            command = ["env", f"PATH={folder}:/usr/bin:/bin", PROJECT / "tools/screenshots/take-picture", picture,
                       "sleep", "60"]

            taken = subprocess.run([PROJECT / "tests/support/with_display.sh", *command], stdin=subprocess.DEVNULL,
                                   capture_output=True, text=True, timeout=90, check=False)

            self.assertEqual(1, taken.returncode)
            self.assertIn("take-picture: no picture could be taken of the window: sleep 60\n", taken.stderr)
            self.assertFalse(picture.exists())


if __name__ == "__main__":
    unittest.main()
