"""Every table of user-visible texts is complete, agrees with the base and is well typeset."""

import plistlib
import re
import unittest
from pathlib import Path

import table_check

PROJECT = Path(__file__).resolve().parents[2]
RESOURCES = PROJECT / "resources"
LANGUAGES = ["Base", "de", "es", "fr", "it", "ja", "ko", "nl", "pt-BR", "zh-Hans", "zh-Hant"]


class StringTables(unittest.TestCase):
    maxDiff = None

    def setUp(self):
        self.tables = table_check.tables(RESOURCES)

    def test_are_there_for_every_language(self):
        self.assertEqual(LANGUAGES, sorted(self.tables))

    def test_are_named_by_the_info_plist(self):
        info = plistlib.loads((RESOURCES / "Info.plist.in").read_bytes())

        self.assertEqual(["en", *LANGUAGES[1:]], info["CFBundleLocalizations"])

    def test_have_every_token_that_the_sources_ask_for(self):
        asked = table_check.tokens_asked_for(PROJECT / "src")

        self.assertLessEqual({"CANCEL", "OK", "ITEM_AND_N_MORE", "MESSAGE_ARE_YOU_SURE_CONTINUE"}, asked)
        self.assertEqual(set(), asked - self.tables["Base"].keys())

    def test_are_without_a_fault(self):
        base = self.tables["Base"]
        found = [f"{language}: {sentence}"
                 for language, table in self.tables.items()
                 for sentence in table_check.findings(language, table, base)]

        self.assertEqual([], found)

    def test_quote_a_button_by_its_title(self):
        for language, table in self.tables.items():
            for token in ("MESSAGE_FUSE_INSTALL_CONTINUE", "MESSAGE_FUSE_INSTALL_CONTINUE_TO_SITE"):
                with self.subTest(language=language, token=token):
                    self.assertEqual([table["CONTINUE"]], table_check.quoted(language, table[token]))

    def test_have_the_placeholders_that_the_sources_fill(self):
        base = self.tables["Base"]

        self.assertEqual(["name", "n"], table_check.PLACEHOLDER.findall(base["ITEM_AND_N_MORE"]))
        self.assertEqual(["file"], table_check.PLACEHOLDER.findall(base["UPLOADED_FILE"]))


class UpdaterTables(unittest.TestCase):
    maxDiff = None

    def setUp(self):
        self.tables = table_check.tables(RESOURCES, "Updater.json")

    def test_are_there_for_every_language(self):
        self.assertEqual(LANGUAGES, sorted(self.tables))

    def test_call_their_buttons_as_the_other_texts_do(self):
        others = table_check.tables(RESOURCES)
        for language, table in self.tables.items():
            for token in sorted(table.keys() & others[language].keys()):
                with self.subTest(language=language, token=token):
                    self.assertEqual(others[language][token], table[token])

    def test_have_just_the_tokens_that_the_updater_asks_for(self):
        sources = PROJECT / "src/platform/linux/updater"
        asked = table_check.tokens_asked_for(sources, r"\b(?:textOf|text)")
        chosen = {"FAILED", "CHECK_FAILED", "INSTALL", "LEARN_MORE", "OFFER_EXPLANATION", "OFFER_INFORMATION",
                  "SYSTEM_TOO_NEW", "SYSTEM_TOO_OLD", "UP_TO_DATE_EXPLANATION"}

        self.assertEqual(self.tables["Base"].keys(), asked | chosen)

    def test_are_without_a_fault(self):
        base = self.tables["Base"]
        found = [f"{language}: {sentence}"
                 for language, table in self.tables.items()
                 for sentence in table_check.findings(language, table, base)]

        self.assertEqual([], found)


class EnglishKeys:
    """Tables whose keys are the English texts: what such a table of every language has to be."""

    maxDiff = None

    def setUp(self):
        self.tables = table_check.strings_tables(RESOURCES, self.file)

    def test_are_there_for_every_language(self):
        self.assertEqual(LANGUAGES, sorted(self.tables))

    # An English reader sees the keys, with or without a table.
    def test_have_english_for_their_keys(self):
        self.assertEqual([], [text for text, english in self.tables["Base"].items() if text != english])

    def test_are_without_a_fault(self):
        base = self.tables.pop("Base")
        found = [f"{language}: {sentence}"
                 for language, table in self.tables.items()
                 for sentence in table_check.findings(language, table, base)]

        self.assertEqual([], found)


class MoveTables(EnglishKeys, unittest.TestCase):
    file = "MoveApplication.strings"

    def test_have_exactly_the_texts_that_the_sources_ask_for(self):
        asked = table_check.move_texts_asked_for(PROJECT / "src/move")

        self.assertEqual(7, len(asked))
        self.assertEqual(asked, set(self.tables["Base"]))


class MenuTables(EnglishKeys, unittest.TestCase):
    file = "MainMenu.strings"

    def test_have_exactly_the_titles_of_the_menus(self):
        menus = (PROJECT / "src/platform/cocoa/windows/main_menu.cpp").read_text(encoding="utf-8")
        titles = set(re.findall(r'\{"([^"]+)",\s*[{"]', menus)) - {"Karno"}

        self.assertEqual(9, len(titles))
        self.assertEqual(titles, set(self.tables["Base"]))


class InformationTables(unittest.TestCase):
    """What macOS says in its own questions, such as whether Karno may control the Finder."""

    maxDiff = None

    def setUp(self):
        self.tables = table_check.strings_tables(RESOURCES, "InfoPlist.strings")

    def test_are_there_for_every_language(self):
        self.assertEqual(LANGUAGES, sorted(self.tables))

    # Some of the questions come from programs that read Info.plist alone.
    def test_have_the_purposes_of_the_info_plist_for_their_base(self):
        info = plistlib.loads((RESOURCES / "Info.plist.in").read_bytes())
        purposes = {key: text for key, text in info.items() if key.endswith("UsageDescription")}

        self.assertIn("NSAppleEventsUsageDescription", purposes)
        self.assertEqual(purposes, self.tables["Base"])

    def test_are_without_a_fault(self):
        base = self.tables["Base"]
        found = [f"{language}: {sentence}"
                 for language, table in self.tables.items()
                 for sentence in table_check.findings(language, table, base)]

        self.assertEqual([], found)


if __name__ == "__main__":
    unittest.main()
