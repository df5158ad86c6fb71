"""The check of the tables finds each kind of fault, and says in one sentence what it is."""

import plistlib
import tempfile
import unittest
from pathlib import Path

import table_check


def findings(language, text, base="Karno has stopped."):
    return list(table_check.findings(language, {"TOKEN": text}, {"TOKEN": base}))


class TableCheck(unittest.TestCase):
    def assert_finding(self, sentence, language, text, base="Karno has stopped."):
        self.assertEqual([sentence], findings(language, text, base))

    def test_passes_a_good_text(self):
        self.assertEqual([], findings("de", "Karno wurde beendet."))
        self.assertEqual([], findings("fr", "Quitter «\u202fKarno\u202f»\u202f?", "Quit “Karno”?"))

    def test_misses_a_token(self):
        self.assertEqual(["TOKEN is missing."], list(table_check.findings("de", {}, {"TOKEN": "Yes"})))

    def test_refuses_a_token_that_the_base_lacks(self):
        self.assertEqual(["TOKEN is not in the base."], list(table_check.findings("de", {"TOKEN": "Ja"}, {})))

    def test_refuses_other_placeholders(self):
        self.assert_finding("TOKEN has other placeholders than the base.", "de", "{{ m }} mehr", "{{ n }} more")

    def test_refuses_half_a_placeholder(self):
        self.assert_finding(
            "TOKEN has a brace that belongs to no placeholder.", "de", "{{ n }} {mehr", "{{ n }} more")

    def test_misses_a_product_name(self):
        self.assert_finding("TOKEN and the base do not both name Karno.", "de", "Das Programm wurde beendet.")

    def test_lets_a_product_that_speaks_of_itself_be_named(self):
        self.assertEqual([], findings("ja", "Karnoを移動します。", "I can move myself."))

    def test_refuses_white_space_around_a_text(self):
        self.assert_finding("TOKEN is empty, or begins or ends with white space.", "de", " Ja", "Yes")
        self.assert_finding("TOKEN is empty, or begins or ends with white space.", "de", "", "Yes")

    def test_refuses_two_blanks(self):
        self.assert_finding("TOKEN has a blank too many.", "de", "Ja,  sicher", "Yes, sure")
        self.assert_finding("TOKEN has a blank too many.", "de", "Ja, \\nsicher", "Yes, sure")

    def test_refuses_a_text_that_is_not_composed(self):
        self.assert_finding("TOKEN is not composed (NFC).", "de", "Ja, fu\u0308r immer", "Yes, for ever")

    def test_refuses_a_character_that_cannot_be_seen(self):
        self.assert_finding("TOKEN has a character that cannot be seen.", "de", "Ja\u200b", "Yes")
        self.assert_finding("TOKEN has a character that cannot be seen.", "de", "\ufeffJa", "Yes")

    def test_refuses_an_escape_that_is_no_line_break(self):
        self.assert_finding("TOKEN has a backslash that is no line break.", "de", "Ja\\tsicher", "Yes")

    def test_refuses_markup(self):
        self.assert_finding("TOKEN has markup or points in a row.", "de", "<b>Ja", "Yes")
        self.assert_finding("TOKEN has markup or points in a row.", "de", "Ja... doch", "Yes")
        self.assert_finding("TOKEN has markup or points in a row.", "de", "Ja &amp doch &amp; nein", "Yes")

    def test_refuses_straight_or_foreign_quotation_marks(self):
        sentence = "TOKEN has quotation marks that are not its language's."

        self.assert_finding(sentence, "de", 'Auf "Ja" klicken', "Click “Yes”")
        self.assert_finding(sentence, "de", "Auf “Ja” klicken", "Click “Yes”")
        self.assert_finding(sentence, "de", "Auf „Ja klicken", "Click “Yes”")
        self.assert_finding(sentence, "it", "l'unità", "the drive")
        self.assert_finding(sentence, "es", "’unidad", "the drive")

    def test_refuses_a_french_mark_without_its_narrow_blank(self):
        sentence = "TOKEN lacks a narrow blank at a mark."

        self.assert_finding(sentence, "fr", "Continuer?", "Continue?")
        self.assert_finding(sentence, "fr", "Continuer\u00a0?", "Continue?")
        self.assert_finding(sentence, "fr", "Cliquer sur «Continuer»", "Click “Continue”")

    def test_refuses_a_blank_before_a_mark(self):
        self.assert_finding("TOKEN has a blank before a mark.", "de", "Fortfahren ?", "Continue?")

    def test_refuses_a_spanish_question_that_is_not_opened(self):
        self.assert_finding("TOKEN does not open a question or an exclamation.", "es", "Continuar?", "Continue?")

    def test_refuses_narrow_marks_between_wide_characters(self):
        self.assert_finding("TOKEN has a narrow mark between wide characters.", "ja", "続けますか?", "Continue?")

    def test_refuses_another_form_of_address(self):
        sentence = "TOKEN addresses the user in another form than the other texts."

        self.assert_finding(sentence, "de", "Möchtest du fortfahren?", "Continue?")
        self.assert_finding(sentence, "de", "Deine Dateien", "Your files")
        self.assert_finding(sentence, "es", "¿Quiere usted continuar?", "Continue?")
        self.assert_finding(sentence, "fr", "Tu peux continuer", "You can continue")
        self.assert_finding(sentence, "it", "Il Suo disco", "Your drive")
        self.assert_finding(sentence, "ko", "설치하시겠습니까？", "Install?")
        self.assert_finding(sentence, "nl", "Wilt u doorgaan?", "Continue?")
        self.assert_finding(sentence, "pt-BR", "Tua unidade", "Your drive")
        self.assert_finding(sentence, "zh-Hans", "您要继续吗？", "Continue?")
        self.assert_finding(sentence, "zh-Hant", "你要繼續嗎？", "Continue?")
        self.assertEqual([], findings("de", "Möchten Sie durch diesen Dialog fortfahren?", "Continue?"))

    def test_refuses_a_statement_for_a_question(self):
        self.assert_finding("TOKEN and the base do not end alike.", "zh-Hans", "继续。", "Continue?")
        self.assert_finding("TOKEN and the base do not end alike.", "de", "Fortfahren", "Continue.")

    def test_refuses_a_text_that_is_not_translated(self):
        self.assert_finding("TOKEN is not translated.", "de", "Karno has stopped.")

    def test_does_not_read_a_damaged_table(self):
        with tempfile.TemporaryDirectory() as folder:
            file = Path(folder) / "Strings.json"
            for content in (b"{", b"[]", b'{"A": 1}', b'{"A": "\xff"}', b'\xef\xbb\xbf{"A": "x"}',
                            b'{"A": "x", "A": "y"}', b'{"B": "x", "A": "y"}'):
                file.write_bytes(content)
                with self.subTest(content), self.assertRaises(table_check.Unreadable):
                    table_check.read(file)

    def test_finds_the_tokens_in_the_sources(self):
        with tempfile.TemporaryDirectory() as folder:
            (Path(folder) / "a.cpp").write_text(
                'x(KarnoLocalise::localise("YES"), localise(\n  "NO", {{"n", "3"}}));\n'
                'textLookedUpOnce(text_, "SURE"); other("MAYBE"); KarnoLocalise::localise(token);\n')

            self.assertEqual({"YES", "NO", "SURE"}, table_check.tokens_asked_for(Path(folder)))

    def test_does_not_read_a_damaged_strings_table(self):
        with tempfile.TemporaryDirectory() as folder:
            file = Path(folder) / "MoveApplication.strings"
            for content in (b"", b'"A" = "B";', plistlib.dumps(["A"]), plistlib.dumps({"A": 1}),
                            plistlib.dumps({"A": "x"}, fmt=plistlib.FMT_BINARY)):
                file.write_bytes(content)
                with self.subTest(content), self.assertRaises(table_check.Unreadable):
                    table_check.read_strings(file)

    def test_finds_the_texts_of_the_move_in_the_sources(self):
        with tempfile.TemporaryDirectory() as folder:
            (Path(folder) / "a.cpp").write_text('x(moveText("Do Not Move"), moveText(\n  "If you\'d like."), text("No"));')

            self.assertEqual({"Do Not Move", "If you'd like."}, table_check.move_texts_asked_for(Path(folder)))


if __name__ == "__main__":
    unittest.main()
