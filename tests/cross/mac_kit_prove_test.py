"""What prove says on a Mac of stand-ins: of a launcher that works, of one that does not, and of a Mac that lacks
something."""

import re
import unittest

import side_by_side
from mac_kit_place import KitPlace, PROJECT, SOURCES

# What bash 3.2, the one of macOS, does not have.
TOO_NEW = (r"declare -[A-Za-z]*[Agn]", r"local -[A-Za-z]*[Agn]", r"\bmapfile\b", r"\breadarray\b", r"\bcoproc\b",
           r"\bwait -[a-z]*n", r"\$\{\w+(\^|,)", r"\$\{\w+@", r"&>>", r"\|&", r"\[-\d+\]", r"%\(", r";;&", r";&",
           r"\$EPOCHSECONDS", r"\[\[ -v ", r"\bglobstar\b")
SCRIPTS = [SOURCES / "prove", *sorted((SOURCES / "parts").glob("*.sh"))]


def lines_of(kind, printed):
    return [line.split(maxsplit=1)[1] for line in printed.splitlines() if line.startswith(f"{kind} ")]


class ProofTest(unittest.TestCase):
    maxDiff = None

    def setUp(self):
        self.place = KitPlace()
        self.addCleanup(self.place.discard)


class AWorkingLauncher(ProofTest):
    def test_passes_every_check_and_leaves_nothing_behind(self):
        before = self.place.everything()

        status, printed, _ = self.place.prove()

        self.assertEqual(([], []), (lines_of("failed", printed), lines_of("skipped", printed)))
        self.assertEqual(0, status)
        for check in ("the unit tests (7)", "the first start", "app-needs-restart", "a stopped client",
                      "restart-wrapper-with-fuse", "the crash question's Yes", "a quit under an alert",
                      "the move from Downloads", "idle wake-ups (5 in 10 s)"):
            self.assertIn(check, lines_of("ok", printed))
        self.assertEqual(before, self.place.everything())
        self.assertEqual(printed.splitlines()[:-1], (self.place.results() / "report.txt").read_text().splitlines())

    def test_is_not_asked_to_press_keys_that_macos_refuses(self):
        status, printed, _ = self.place.prove("--only", "launcher", KIT_KEYS="false")

        self.assertEqual(["the answers to the crash question: System Events may not press keys",
                          "the move from Downloads: System Events may not press keys"], lines_of("skipped", printed))
        self.assertIn("a termination signal under an alert", lines_of("ok", printed))
        self.assertEqual(0, status)

    def test_has_one_build_less_without_rights_and_macfuse(self):
        _, printed, _ = self.place.prove("--only", "launcher", KIT_ROOT="", KIT_KEYS="false")

        self.assertIn("the FUSE build and restart-wrapper-with-fuse: there is no macFUSE, and no right to make one up",
                      lines_of("skipped", printed))


class ABrokenLauncher(ProofTest):
    def failures_with(self, broken):
        status, printed, _ = self.place.prove("--only", "launcher", "--wait", "3", "--calm", "1", KIT_BROKEN=broken,
                                              KIT_KEYS="false")
        self.assertEqual(1, status)
        return lines_of("failed", printed)

    def test_that_does_not_act_on_a_message_fails(self):
        self.assertEqual(["check-for-updates: no line 'Sparkle[CHECK] Checking for updates' in the log"],
                         self.failures_with("check-for-updates"))

    def test_that_takes_a_stopped_client_for_dead_fails(self):
        self.assertIn("a stopped client: the launcher takes it for dead", self.failures_with("stopped"))

    def test_that_quits_under_an_alert_fails(self):
        self.assertIn("a quit under an alert: it does not wait for the answer", self.failures_with("hasty"))

    def test_that_does_not_say_that_it_ends_fails(self):
        self.assertIn("user-selected-quit: no line 'AppDelegate:: Terminating' in the log",
                      self.failures_with("silent"))


class TheTestPrograms(ProofTest):
    def test_are_not_asked_for_cases_that_are_left_out(self):
        self.place.make_program(self.place.kit / "tests/karno_native_tests",
                                '#!/bin/sh\necho "$1"; echo "[  PASSED  ] 3 tests."\n')

        self.place.prove("--only", "tests")

        output = (self.place.results() / "native_tests.txt").read_text()
        self.assertIn("--gtest_filter=-Fake/*:MessageTable.", output)
        for other in ("CaptilisiedString", "EscapePressesCancel", "*OnScreen.*"):
            self.assertNotIn(other, output)

    def test_are_asked_for_windows_and_keys_only_where_there_are_any(self):
        for lacking, pattern in (({"KIT_KEYS": "false"}, ":ProgressWindowOnScreen.EscapePressesCancel:"),
                                 ({"KIT_SESSION": "Background"}, "=-*OnScreen.*:")):
            self.place.make_program(self.place.kit / "tests/karno_native_tests",
                                    '#!/bin/sh\necho "$1"; echo "[  PASSED  ] 3 tests."\n')

            self.place.prove("--only", "tests", **lacking)

            self.assertIn(pattern, (self.place.results() / "native_tests.txt").read_text())
            self.setUp()

    def test_name_the_cases_that_have_failed(self):
        self.place.make_program(self.place.kit / "tests/karno_unit_tests",
                                "#!/bin/sh\necho '[  FAILED  ] KarnoLog.Writes (3 ms)'\n"
                                "echo '[  PASSED  ] 2 tests.'\nexit 1\n")

        status, printed, _ = self.place.prove("--only", "tests")

        self.assertEqual((1, ["the unit tests: KarnoLog.Writes "]), (status, lines_of("failed", printed)))

    def test_fail_when_they_do_not_start(self):
        (self.place.kit / "tests/karno_unit_tests").unlink()

        status, printed, _ = self.place.prove("--only", "tests")

        self.assertEqual((1, ["the unit tests: ended with 127; see unit_tests.txt"]),
                         (status, lines_of("failed", printed)))


class AMacThatLacksSomething(ProofTest):
    def said_with(self, **settings):
        status, printed, _ = self.place.prove("--only", "launcher", **settings)
        self.assertEqual((0, []), (status, lines_of("failed", printed)))
        return printed

    def test_is_too_old(self):
        for version, processor, lowest in (("10.14.5", "x86_64", "10.14.6"), ("10.15.7", "arm64", "11.0")):
            printed = self.said_with(KIT_VERSION=version, KIT_PROCESSOR=processor)

            self.assertIn(f"This macOS is too old: the launcher needs {lowest} or later on {processor}.", printed)
            self.assertEqual(["the launcher: this macOS is too old"], lines_of("skipped", printed))
            self.setUp()

    def test_has_no_session_with_a_screen(self):
        printed = self.said_with(KIT_SESSION="Background")

        self.assertEqual(["the launcher: there is no session with a screen here; open a terminal on the Mac itself"],
                         lines_of("skipped", printed))

    def test_runs_a_launcher_already(self):
        (self.place.state / "launcher.1").write_text('{"bundle": "/Applications/Karno.app", "client": null}')

        printed = self.said_with()

        self.assertEqual(["the launcher: a launcher runs already; quit it first"], lines_of("skipped", printed))

    def test_can_start_no_build_at_all(self):
        printed = self.said_with(KIT_VERSION="11.7", KIT_ROOT="")

        self.assertEqual(["the launcher's starts: this macOS is before 12.3 and has no macFUSE"],
                         lines_of("skipped", printed))

    def test_has_put_the_kit_into_quarantine(self):
        printed = self.said_with(KIT_ATTRIBUTE="kit/prove: com.apple.quarantine", KIT_SESSION="Background")

        self.assertIn(f"xattr -dr com.apple.quarantine '{self.place.kit}'", printed)

    def test_has_another_finding_of_the_self_check(self):
        status, printed, _ = self.place.prove("--only", "launcher", KIT_VERSION="11.7", KIT_ROOT="",
                                              KIT_SELF_CHECK="This system has no +[NSAlert new].")

        self.assertEqual((1, ["the self-check: This system has no +[NSAlert new]."]),
                         (status, lines_of("failed", printed)))


class WhatIsThereAlready(ProofTest):
    def test_is_named_and_left_alone(self):
        (self.place.disk / "Applications/Karno.app").mkdir()
        (self.place.state / "it.vantul.karno").write_text("0")
        before = self.place.everything()

        status, printed, said = self.place.prove()

        self.assertEqual((1, ""), (status, printed))
        self.assertEqual("prove: a launcher has been here, and the kit would change what is its:\n"
                         f"  {self.place.disk}/Applications/Karno.app\n  the preferences it.vantul.karno\n"
                         "prove: take it away, or say --here to go on beside it\n", said)
        self.assertEqual(before, self.place.everything())

    def test_is_put_back_with_here(self):
        logs = self.place.home / "Library/Logs/Karno for macOS"
        logs.mkdir(parents=True)
        (self.place.disk / "Applications/Karno.app").mkdir()
        (self.place.state / "it.vantul.karno").write_text("mine")

        status, printed, _ = self.place.prove("--here", "--only", "launcher", KIT_KEYS="false")

        self.assertEqual((0, []), (status, lines_of("failed", printed)))
        self.assertEqual("mine", (self.place.state / "it.vantul.karno").read_text())
        self.assertTrue((self.place.disk / "Applications/Karno.app").is_dir())
        self.assertTrue(logs.is_dir())


class WrongWords(ProofTest):
    def test_end_with_one_line(self):
        for words, complaint in ((["--fast"], "it takes no '--fast'"), (["--only"], "--only needs a value"),
                                 (["--only", "all"], "--only takes tests or launcher"),
                                 (["--wait", "long"], "--wait takes a number of seconds"),
                                 (["--framework", "/nowhere"], "there is no framework at '/nowhere'")):
            status, _, said = self.place.prove(*words)

            self.assertEqual((64, f"prove: {complaint}; see ./prove --help\n"), (status, said))

    def test_help_names_every_option(self):
        for word in ("-h", "--help"):
            status, printed, _ = self.place.prove(word)

            self.assertEqual(0, status)
            for option in ("--here", "--only", "--framework", "--wait", "--calm"):
                self.assertIn(option, printed)


class TheScripts(unittest.TestCase):
    def test_use_nothing_that_the_bash_of_macos_lacks(self):
        found = [f"{script.name}:{number}: {line.strip()}" for script in SCRIPTS
                 for number, line in enumerate(script.read_text().splitlines(), 1)
                 for pattern in TOO_NEW if re.search(pattern, line)]

        self.assertEqual([], found)

    def test_are_short_enough_to_be_read(self):
        lines = sum(len(script.read_text().splitlines()) for script in [*SCRIPTS, PROJECT / "scripts/mac-kit"])

        self.assertLessEqual(lines, 900)


if __name__ == "__main__":
    side_by_side.main()
