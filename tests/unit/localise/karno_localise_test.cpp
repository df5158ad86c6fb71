#include "localise/karno_localise.h"

#include <gmock/gmock.h>

#include "fake_platform.h"
#include "printing.h"
#include "util/error.h"

namespace karno {
namespace {

using test::FakePlatform;
using test::Line;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr const char* kFolder = "/Applications/Karno.app/Contents/Resources/";

FakePlatform& withTable(FakePlatform& machine, const std::string& resource, const std::string& json) {
  machine.files.addFile(kFolder + resource, json);
  machine.bundles.main().resources[resource] = kFolder + resource;
  return machine;
}

TEST(Localise, PrefersTheTableOfTheUsersLanguage) {
  FakePlatform machine;
  withTable(machine, "Strings.json", R"({"OK": "In Ordnung"})");
  withTable(machine, "Base.lproj/Strings.json", R"({"OK": "OK"})");

  EXPECT_EQ(KarnoLocalise::localise("OK"), "In Ordnung");
}

TEST(Localise, FallsBackToTheBaseTableForAMissingOrEmptyText) {
  FakePlatform machine;
  withTable(machine, "Strings.json", R"({"YES": ""})");
  withTable(machine, "Base.lproj/Strings.json", R"({"YES": "Yes", "NO": "No"})");

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

TEST(Localise, PassesOverMembersThatAreNoStrings) {
  FakePlatform machine;
  machine.withStrings(R"({"OK": 1, "YES": ["Yes"], "NO": "No"})");

  EXPECT_EQ(KarnoLocalise::localise("OK"), "OK");
  EXPECT_EQ(KarnoLocalise::localise("YES"), "YES");
  EXPECT_EQ(KarnoLocalise::localise("NO"), "No");
}

TEST(Localise, WarnsOnceAboutEachTableThatIsNotThere) {
  FakePlatform machine;

  KarnoLocalise::localise("OK");
  KarnoLocalise::localise("OK");
  machine.runFor(1);

  EXPECT_THAT(
      machine.log(),
      ElementsAre(Line("WARN", "KarnoLocalise: Failed to build path for 'Locale: Strings.json'"),
                  Line("WARN", "KarnoLocalise: Failed to build path for 'Base.lproj: Strings.json'")));
}

TEST(Localise, WarnsAboutATableThatCannotBeRead) {
  FakePlatform machine;
  withTable(machine, "Strings.json", "{}");
  withTable(machine, "Base.lproj/Strings.json", R"({"OK": "OK"})");
  machine.files.failRead(std::string(kFolder) + "Strings.json", 13);

  EXPECT_EQ(KarnoLocalise::localise("OK"), "OK");

  machine.runFor(1);
  EXPECT_THAT(
      machine.log(),
      ElementsAre(Line("WARN", "KarnoLocalise: Failed to load data for 'Locale: Strings.json'. Error=" +
                                   Error::posix(13).localizedDescription())));
}

class LocaliseWithABrokenTable : public ::testing::TestWithParam<std::string> {};

TEST_P(LocaliseWithABrokenTable, WarnsAndUsesTheOtherOne) {
  FakePlatform machine;
  withTable(machine, "Strings.json", GetParam());
  withTable(machine, "Base.lproj/Strings.json", R"({"OK": "OK from the base"})");

  EXPECT_EQ(KarnoLocalise::localise("OK"), "OK from the base");

  machine.runFor(1);
  EXPECT_THAT(machine.console(),
              Contains(::testing::HasSubstr(
                  "[WARN] KarnoLocalise: Failed to serialise data for 'Locale: Strings.json'. Error=")));
}

INSTANTIATE_TEST_SUITE_P(Tables, LocaliseWithABrokenTable,
                         ::testing::Values("", "{", "[\"OK\"]", "\"OK\"", "\xFF\xFE", R"({"OK": "x"} y)"));

}  // namespace
}  // namespace karno
