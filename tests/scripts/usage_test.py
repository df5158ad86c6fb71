"""Every script says how it is used, and what was wrong in one line and with one exit status when it is misused."""

import os
import subprocess
import unittest
from pathlib import Path

SCRIPTS = Path(__file__).resolve().parents[2] / "scripts"

# What is wrong use of each. scripts/run hands all its words to the launcher.
MISUSE = {
    "bench": ["one", "two"],
    "bootstrap": ["now"],
    "check-macos-bundle": ["--nonsense"],
    "cross-macos": ["--nonsense"],
    "fuzz": ["no_such_target"],
    "mac-kit": ["--nonsense"],
    "package-macos": ["--nonsense"],
    "run": None,
    "screenshots": ["--nonsense"],
    "sign-macos": ["--nonsense"],
    "simulate": ["--nonsense"],
    "test": ["--preset", "nonsense"],
}


def run(script, *words):
    return subprocess.run([SCRIPTS / script, *words], stdin=subprocess.DEVNULL, capture_output=True, text=True,
                          timeout=60, check=False)


class Usage(unittest.TestCase):
    def test_is_known_of_every_script(self):
        self.assertEqual(sorted(MISUSE), sorted(os.listdir(SCRIPTS)))

    def test_is_told_on_demand(self):
        for script in MISUSE:
            for word in ("-h", "--help"):
                with self.subTest(script=script, word=word):
                    told = run(script, word)

                    self.assertEqual((0, ""), (told.returncode, told.stderr))
                    self.assertIn(f"usage: scripts/{script}", told.stdout)

    def test_that_is_wrong_is_told_in_one_line(self):
        for script, words in MISUSE.items():
            if words is None:
                continue
            with self.subTest(script=script):
                told = run(script, *words)

                self.assertEqual((os.EX_USAGE, ""), (told.returncode, told.stdout))
                self.assertRegex(told.stderr, rf"^(scripts/)?{script}: .+\n\Z")
                self.assertEqual(1, told.stderr.count("\n"))


if __name__ == "__main__":
    unittest.main()
