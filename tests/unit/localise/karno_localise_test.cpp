#include "localise/karno_localise.h"

#include <gmock/gmock.h>

#include "elements_are.h"
#include "fake_platform.h"
#include "printing.h"

namespace karno {
namespace {

using karno::test::ElementsAre;
using test::FakePlatform;
using ::testing::IsEmpty;

TEST(Localise, PrefersTheTableOfTheUsersLanguage) {
  FakePlatform machine;
  machine.withResource("Strings.json", R"({"OK": "In Ordnung"})");
  machine.withResource("Base.lproj/Strings.json", R"({"OK": "OK"})");

  EXPECT_EQ(KarnoLocalise::localise("OK"), "In Ordnung");
}

TEST(Localise, FallsBackToTheBaseTableForAMissingOrEmptyText) {
  FakePlatform machine;
  machine.withResource("Strings.json", R"({"YES": ""})");
  machine.withResource("Base.lproj/Strings.json", R"({"YES": "Yes", "NO": "No"})");

  EXPECT_EQ(KarnoLocalise::localise("YES"), "Yes");
  EXPECT_EQ(KarnoLocalise::localise("NO"), "No");
}

TEST(Localise, AnswersATokenThatNoTableHasWithItselfAndTellsTheConsoleAlone) {
  FakePlatform machine;
  machine.withStrings("{}");

  EXPECT_EQ(KarnoLocalise::localise("NOT\\nTHERE"), "NOT\\nTHERE");

  machine.runFor(1);
  EXPECT_THAT(machine.console(), ElementsAre("--- KarnoLocalise token 'NOT\\nTHERE' not found"));
  EXPECT_THAT(machine.log(), IsEmpty());
}

TEST(Localise, AnswersAnEmptyTokenWithNothingAndStaysSilent) {
  FakePlatform machine;

  EXPECT_EQ(KarnoLocalise::localise(""), "");

  EXPECT_THAT(machine.console(), IsEmpty());
}

TEST(Localise, TurnsTheTwoEscapesIntoALineBreakAndASingleQuote) {
  FakePlatform machine;
  machine.withStrings(R"({"TEXT": "Line one\\nLine \\\"two\\\""})");

  EXPECT_EQ(KarnoLocalise::localise("TEXT"), "Line one\nLine 'two'");
}

TEST(Localise, LooksForEscapesFromLeftToRightAndLineBreaksFirst) {
  FakePlatform machine;
  machine.withStrings(R"({"TEXT": "\\\\n|\\\\\"|\\n\\n|\n|\"|\\t"})");

  EXPECT_EQ(KarnoLocalise::localise("TEXT"), "\\\n|\\'|\n\n|\n|\"|\\t");
}

TEST(Localise, IgnoresTheCaseOfNoToken) {
  FakePlatform machine;
  machine.withStrings(R"({"OK": "OK", "ok": "small"})");

  EXPECT_EQ(KarnoLocalise::localise("ok"), "small");
  EXPECT_EQ(KarnoLocalise::localise("Ok"), "Ok");
}

TEST(Localise, TellsTheConsoleEachTimeThatATokenIsNotThere) {
  FakePlatform machine;
  machine.withStrings("{}");

  KarnoLocalise::localise("OK");
  KarnoLocalise::localise("OK");

  EXPECT_THAT(machine.console(), ElementsAre("--- KarnoLocalise token 'OK' not found",
                                             "--- KarnoLocalise token 'OK' not found"));
}

TEST(Localise, FillsPlaceholdersInTheTextOfAToken) {
  FakePlatform machine;
  machine.withStrings(R"({"ITEMS": "{{ name }} and {{n}} more"})");

  EXPECT_EQ(KarnoLocalise::localise("ITEMS", {{"name", "a.txt"}, {"n", "3"}}), "a.txt and 3 more");
}

TEST(Localise, KeepsPlaceholdersWithoutAParameterAndPassesOverParametersWithoutAPlaceholder) {
  FakePlatform machine;
  machine.withStrings(R"({"ITEMS": "{{ name }} and {{n}} more"})");

  EXPECT_EQ(KarnoLocalise::localise("ITEMS"), "{{ name }} and {{n}} more");
  EXPECT_EQ(KarnoLocalise::localise("ITEMS", {{"n", "3"}, {"other", "x"}}), "{{ name }} and 3 more");
}

TEST(Localise, FillsParametersInTheirOrderAlsoInWhatAnEarlierOneHasPutIn) {
  FakePlatform machine;
  machine.withStrings(R"({"TEXT": "{{a}}{{b}}"})");

  EXPECT_EQ(KarnoLocalise::localise("TEXT", {{"b", "{{a}}"}, {"a", "{{b}}"}}), "{{b}}{{b}}");
  EXPECT_EQ(KarnoLocalise::localise("TEXT", {{"a", "{{b}}"}, {"b", "{{a}}"}}), "{{a}}{{a}}");
}

TEST(Localise, FillsPlaceholdersOfATokenThatNoTableHas) {
  FakePlatform machine;
  machine.withStrings("{}");

  EXPECT_EQ(KarnoLocalise::localise("NO {{ name }}", {{"name", "TOKEN"}}), "NO TOKEN");
}

TEST(Localise, AppliesOptionsToTheFilledText) {
  FakePlatform machine;
  machine.withStrings(R"({"QUIT": "quit {{name}}"})");

  EXPECT_EQ(KarnoLocalise::localise("QUIT", {{"name", "karno"}}, LocaliseOptionQuestionMark), "quit karno?");
  EXPECT_EQ(KarnoLocalise::localise("QUIT", LocaliseOptionFirstLetterUppercase), "Quit {{name}}");
  EXPECT_EQ(
      KarnoLocalise::localise("QUIT", {{"name", "it"}}, LocaliseOptionUppercase | LocaliseOptionEllipsis),
      "QUIT IT...");
}

TEST(LocaliseItem, NamesOneItemAndHowManyMoreThereAre) {
  FakePlatform machine;
  machine.withStrings(
      R"({"ITEM_AND_N_MORE": "{{ name }} and {{ n }} more", "UPLOADED_FILE": "Got {{ file }}"})");

  EXPECT_EQ(KarnoLocalise::item("a.txt", 3), "a.txt and 3 more");
  EXPECT_EQ(KarnoLocalise::item("a.txt", 0), "Got a.txt");
  EXPECT_EQ(KarnoLocalise::item("a.txt", -1), "a.txt and -1 more");
  EXPECT_EQ(KarnoLocalise::item("a.txt", INT64_MIN), "a.txt and -9223372036854775808 more");
}

// The name is a replacement template, so what it says of groups is taken at its word.
TEST(LocaliseItem, ReadsTheNameAsAReplacementTemplate) {
  FakePlatform machine;
  machine.withStrings(R"({"UPLOADED_FILE": "Got {{ file }}"})");

  EXPECT_EQ(KarnoLocalise::item("$1 bill", 0), "Got  bill");
  EXPECT_EQ(KarnoLocalise::item("a\\b", 0), "Got ab");
}

TEST(Localise, LoadsTheTablesOnceAndNeverAgain) {
  FakePlatform machine;
  machine.withStrings(R"({"OK": "first"})");
  KarnoLocalise::localise("OK");

  machine.withStrings(R"({"OK": "second"})");

  EXPECT_EQ(KarnoLocalise::localise("OK"), "first");
}

}  // namespace
}  // namespace karno
