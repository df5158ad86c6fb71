"""docs/examples/karno-state tells a management server what the launcher is at."""

import os
import subprocess
import tempfile
import unittest
from pathlib import Path

SCRIPT = Path(__file__).resolve().parents[2] / "docs/examples/karno-state"
RUNS = """{
  "version": 1,
  "launchers": [
    {
      "state": "waits-for-fuse",
      "since": "2026-11-21 09:12:41",
      "questions": [],
      "log": [
        "a line that says \\"state\\": \\"quits\\""
      ]
    },
    {
      "state": "runs"
    }
  ],
  "next": null
}
"""
NONE_RUNS = '{\n  "version": 1,\n  "launchers": [],\n  "next": null\n}\n'
LATER_FORM = '{\n  "version": 2,\n  "launchers": []\n}\n'
TOOLS = {
    "stat": '[ "$*" = "-f %Su /dev/console" ] && echo "$AT_THE_SCREEN"',
    "id": '[ "$*" = "-u anna" ] && echo 501',
    "launchctl": '[ "$1 $2" = "asuser 501" ] && shift 2 && exec "$@"',
    "sudo": '[ "$1 $2 $3" = "-u anna -H" ] && shift 3 && exec "$@"',
}


class KarnoState(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = Path(folder.name)
        for name, text in TOOLS.items():
            self.make_program(f"bin/{name}", text)
        # The same script on a disk of this test's.
        self.script = self.folder / "karno-state"
        self.script.write_text(SCRIPT.read_text().replace("/Applications/", f"{self.folder}/Applications/"))

    def make_program(self, name, text):
        path = self.folder / name
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_text(f"#!/bin/sh\n{text}\n")
        path.chmod(0o755)

    def install(self, status):
        """A tool that answers this, in the words and with the exit status of one that is there."""
        (self.folder / "status").write_text(status)
        self.make_program("Applications/Karno.app/Contents/MacOS/karnoctl",
                          f'[ "$*" = "status --json" ] && cat "{self.folder}/status"')

    def run_script(self, *words, user="anna"):
        run = subprocess.run(["bash", "--posix", self.script, *words], capture_output=True, text=True, check=False,
                             env=os.environ | {"PATH": f"{self.folder}/bin:{os.environ['PATH']}", "AT_THE_SCREEN": user})
        return run.returncode, run.stdout, run.stderr

    def assert_answers(self, text, **options):
        self.assertEqual((0, f"<result>{text}</result>\n", ""), self.run_script(**options))

    def test_is_the_state_of_the_first_launcher(self):
        self.install(RUNS)

        self.assert_answers("waits-for-fuse")

    def test_is_that_none_runs(self):
        self.install(NONE_RUNS)

        self.assert_answers("does not run")

    def test_is_not_known_of_a_tool_that_answers_in_another_form(self):
        for answer in (LATER_FORM, "usage: karnoctl status\n", ""):
            with self.subTest(answer=answer):
                self.install(answer)

                self.assert_answers("not known")

    def test_is_none_where_the_launcher_is_not_installed(self):
        self.assert_answers("not installed")

    def test_is_none_where_nobody_is_at_the_screen(self):
        self.install(RUNS)
        for user in ("", "root", "loginwindow", "_mbsetupuser"):
            with self.subTest(user=user):
                self.assert_answers("nobody at the screen", user=user)

    def test_says_how_it_is_used(self):
        usage = "usage: karno-state; it prints <result>STATE</result>, and takes no words\n"
        for word in ("-h", "--help"):
            self.assertEqual((0, usage, ""), self.run_script(word))
        for words in (["now"], ["--help", "more"], [""], [b"\xff"]):
            with self.subTest(words=words):
                self.assertEqual((os.EX_USAGE, "", f"karno-state: {usage}"), self.run_script(*words))


if __name__ == "__main__":
    unittest.main()
