"""The package's script has the launcher quit that runs for who is at the screen. What a Mac has for that is stood in."""

import os
import subprocess
import tempfile
import unittest
from pathlib import Path

SCRIPT = Path(__file__).resolve().parents[2] / "resources/macos/package/scripts/preinstall"
# Each notes how it was called and does what it was told to run, as the same user.
TOOLS = {
    "stat": '[ "$*" = "-f %Su /dev/console" ] && echo "$AT_THE_SCREEN"',
    "id": '[ "$*" = "-u $AT_THE_SCREEN" ] && [ "$AT_THE_SCREEN" != nobody-knows ] && echo 501',
    "launchctl": '[ "$1 $2" = "asuser 501" ] && shift 2 && exec "$@"',
    "sudo": '[ "$1 $3" = "-u -H" ] && shift 3 && exec "$@"',
}
KARNOCTL = """case $1 in
  quit) exit "$QUIT_STATUS" ;;
  status) exit "$STATUS_STATUS" ;;
esac
"""
NOTED = '#!/bin/sh\necho "$(basename "$0") $*" >>"$TOOL_LOG"\n'
ASKED = "karnoctl quit --wait 60"
LOOKED = "karnoctl status"


class Preinstall(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = Path(folder.name)
        self.applications = self.folder / "Applications"
        self.log = self.folder / "log"
        for name, text in TOOLS.items():
            self.make_program(self.folder / "bin" / name, text)

    def make_program(self, path, text):
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_text(NOTED + text)
        path.chmod(0o755)

    def install_launcher(self):
        self.make_program(self.applications / "Karno.app/Contents/MacOS/karnoctl", KARNOCTL)

    def run_script(self, *words):
        return self.run_with({}, *words)

    def run_with(self, variables, *words):
        """(exit status, what was said); by the shell that a Mac has for sh, and with the stand-ins first."""
        environment = {"PATH": f"{self.folder}/bin:{os.environ['PATH']}", "TOOL_LOG": str(self.log),
                       "AT_THE_SCREEN": "anna", "QUIT_STATUS": "0", "STATUS_STATUS": "0"} | variables
        run = subprocess.run(["bash", "--posix", SCRIPT, *words], capture_output=True, text=True, env=environment,
                             timeout=30, check=False)
        return run.returncode, run.stderr

    def before_installation(self, volume="/", **variables):
        return self.run_with(variables, "/tmp/Karno.pkg", self.applications, volume, "/")

    def calls(self):
        return self.log.read_text().splitlines() if self.log.exists() else []

    def calls_of_tool(self):
        return [call for call in self.calls() if call.startswith("karnoctl")]

    def test_asks_the_launcher_in_the_session_of_who_is_at_the_screen(self):
        self.install_launcher()

        self.assertEqual((0, ""), self.before_installation())

        karnoctl = self.applications / "Karno.app/Contents/MacOS/karnoctl"
        self.assertEqual(["stat -f %Su /dev/console", "id -u anna",
                          f"launchctl asuser 501 sudo -u anna -H {karnoctl} quit --wait 60",
                          f"sudo -u anna -H {karnoctl} quit --wait 60", ASKED], self.calls())

    def test_lets_the_package_in_when_no_launcher_runs(self):
        self.install_launcher()

        self.assertEqual((0, ""), self.before_installation(QUIT_STATUS="3"))

        self.assertEqual([ASKED], self.calls_of_tool())

    def test_keeps_the_package_out_while_the_launcher_stays(self):
        self.install_launcher()

        said = self.before_installation(QUIT_STATUS="4")

        self.assertEqual((1, "preinstall: Karno is running and did not quit within 60 seconds; quit it and install "
                             "again\n"), said)
        self.assertEqual([ASKED, LOOKED], self.calls_of_tool())

    def test_lets_the_package_in_over_an_idle_bundle_that_does_not_know_the_verb(self):
        self.install_launcher()

        self.assertEqual((0, ""), self.before_installation(QUIT_STATUS="64", STATUS_STATUS="3"))

        self.assertEqual([ASKED, LOOKED], self.calls_of_tool())

    def test_does_nothing_where_there_is_no_bundle(self):
        self.assertEqual((0, ""), self.before_installation())

        self.assertEqual([], self.calls())

    def test_does_nothing_for_another_disk(self):
        self.install_launcher()

        self.assertEqual((0, ""), self.before_installation("/Volumes/Other"))

        self.assertEqual([], self.calls())

    def test_asks_nobody_before_somebody_has_logged_in(self):
        self.install_launcher()
        for user in ("root", "loginwindow", "_mbsetupuser", "", "nobody-knows"):
            with self.subTest(user=user):
                self.assertEqual((0, ""), self.before_installation(AT_THE_SCREEN=user))

        self.assertEqual([], self.calls_of_tool())

    def test_says_how_it_is_used(self):
        for word in ("-h", "--help"):
            self.assertEqual((0, ""), self.run_script(word))
        for words in ([], ["a"], ["a", "b", "/"], ["a", "b", "/", "/", "e"], [b"\xff"]):
            with self.subTest(words=words):
                self.assertEqual((os.EX_USAGE, "preinstall: it takes a package, a folder, a volume and a system root; "
                                               "see preinstall --help\n"), self.run_script(*words))
        self.assertEqual([], self.calls())


if __name__ == "__main__":
    unittest.main()
