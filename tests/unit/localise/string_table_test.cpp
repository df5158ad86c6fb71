#include "localise/string_table.h"

#include <gmock/gmock.h>

#include "elements_are.h"
#include "fake_platform.h"
#include "localise/karno_localise.h"
#include "printing.h"
#include "util/error.h"

namespace karno {
namespace {

using karno::test::ElementsAre;
using test::FakePlatform;
using test::Line;
using ::testing::IsEmpty;

constexpr const char* kLocalised = "/Applications/Karno.app/Contents/Resources/Strings.json";

Error unreadable(const std::string& reason) {
  return Error(
      "NSCocoaErrorDomain", 3840,
      {{"NSLocalizedDescription", "The data couldn’t be read because it isn’t in the correct format."},
       {"NSDebugDescription", reason}});
}

TEST(StringTable, HasTheTextsOfAJsonObject) {
  const auto table = stringTableFromJson(R"( {"OK": "In Ordnung", "EMPTY": "", "": "no name"} )");

  EXPECT_EQ(table.value(), (StringTable{{"OK", "In Ordnung"}, {"EMPTY", ""}, {"", "no name"}}));
}

TEST(StringTable, LeavesOutMembersThatAreNoTexts) {
  const auto table =
      stringTableFromJson(R"({"A": 1, "B": ["x"], "C": {"D": "x"}, "E": null, "F": true, "G": "text"})");

  EXPECT_EQ(table.value(), (StringTable{{"G", "text"}}));
}

TEST(StringTable, MayBeEmpty) { EXPECT_EQ(stringTableFromJson("{}").value(), StringTable()); }

TEST(StringTable, TakesTheLaterOfTwoMembersWithOneName) {
  EXPECT_EQ(stringTableFromJson(R"({"A": "first", "A": "second"})").value(), (StringTable{{"A", "second"}}));
}

TEST(StringTable, ReadsTheEscapesOfJsonAndKeepsItsOwn) {
  const auto table =
      stringTableFromJson(R"({"A": "\u00e4\ud83d\ude00\n\t\/", "B": "one\\ntwo \\\"three\\\""})");

  EXPECT_EQ(table.value(), (StringTable{{"A", "ä😀\n\t/"}, {"B", R"(one\ntwo \"three\")"}}));
}

TEST(StringTable, PassesOverAByteOrderMark) {
  EXPECT_EQ(stringTableFromJson("\xEF\xBB\xBF{\"A\": \"x\"}").value(), (StringTable{{"A", "x"}}));
}

TEST(StringTable, SaysWhereTheJsonEnds) {
  EXPECT_EQ(stringTableFromJson("").error(), unreadable("Not JSON from byte 1 on."));
  EXPECT_EQ(stringTableFromJson(R"({"A": "x")").error(), unreadable("Not JSON from byte 10 on."));
  EXPECT_EQ(stringTableFromJson(R"({"A": "x"} y)").error(), unreadable("Not JSON from byte 12 on."));
  EXPECT_EQ(stringTableFromJson(R"({"A": "x",})").error(), unreadable("Not JSON from byte 11 on."));
  EXPECT_EQ(stringTableFromJson("{\"A\": \"\xFF\"}").error(), unreadable("Not JSON from byte 8 on."));
  EXPECT_EQ(stringTableFromJson(R"({"A": "\ud83d"})").error(), unreadable("Not JSON from byte 14 on."));
}

TEST(StringTable, IsAnObjectAndNothingElse) {
  const Error expected = unreadable("The top level is not an object.");

  EXPECT_EQ(stringTableFromJson(R"(["OK"])").error(), expected);
  EXPECT_EQ(stringTableFromJson(R"("OK")").error(), expected);
  EXPECT_EQ(stringTableFromJson("null").error(), expected);
  EXPECT_EQ(stringTableFromJson("1").error(), expected);
}

TEST(StringTable, RefusesANumberThatIsTooLarge) {
  EXPECT_EQ(stringTableFromJson(R"({"A": 1e999})").error(), unreadable("A number is out of range."));
}

TEST(StringTable, SurvivesAnyDepth) {
  const std::string depth(100'000, '[');

  EXPECT_EQ(stringTableFromJson(depth).error(), unreadable("Not JSON from byte 100001 on."));
  EXPECT_EQ(stringTableFromJson("{\"A\": " + depth + std::string(depth.size(), ']') + "}").value(),
            StringTable());
}

TEST(StringTable, MayHaveTenMegabytes) {
  const std::string longText(10'000'000, 'x');

  const auto table = stringTableFromJson(R"({"A": ")" + longText + R"(", "B": "short"})");

  EXPECT_EQ(table.value().at("A").size(), longText.size());
  EXPECT_EQ(table.value().at("B"), "short");
}

TEST(LoadingStrings, WarnsOnceAboutEachTableThatIsNotThere) {
  FakePlatform machine;

  KarnoLocalise::localise("OK");
  KarnoLocalise::localise("OK");
  machine.runFor(1);

  EXPECT_THAT(
      machine.log(),
      ElementsAre(Line("WARN", "KarnoLocalise: Failed to build path for 'Locale: Strings.json'"),
                  Line("WARN", "KarnoLocalise: Failed to build path for 'Base.lproj: Strings.json'")));
}

TEST(LoadingStrings, WarnsAboutAnEmptyPathAsAboutNone) {
  FakePlatform machine;
  machine.withResource("Base.lproj/Strings.json", "{}");
  machine.bundles.main().resources["Strings.json"] = "";

  KarnoLocalise::localise("OK");
  machine.runFor(1);

  EXPECT_THAT(machine.log(),
              ElementsAre(Line("WARN", "KarnoLocalise: Failed to build path for 'Locale: Strings.json'")));
}

TEST(LoadingStrings, WarnsAboutATableThatCannotBeReadAndUsesTheOther) {
  FakePlatform machine;
  machine.withResource("Strings.json", "{}").withResource("Base.lproj/Strings.json", R"({"OK": "Base"})");
  machine.files.failRead(kLocalised, 13);

  EXPECT_EQ(KarnoLocalise::localise("OK"), "Base");

  machine.runFor(1);
  EXPECT_THAT(machine.log(),
              ElementsAre(Line("WARN",
                               "KarnoLocalise: Failed to load data for 'Locale: Strings.json'. Error=The "
                               "operation couldn’t be completed. Permission denied")));
}

TEST(LoadingStrings, WarnsAboutAFolderInPlaceOfTheFile) {
  FakePlatform machine;
  machine.withResource("Strings.json", "{}");
  machine.files.addDirectory("/Applications/Karno.app/Contents/Resources/Base.lproj/Strings.json");
  machine.bundles.main().resources["Base.lproj/Strings.json"] =
      "/Applications/Karno.app/Contents/Resources/Base.lproj/Strings.json";

  KarnoLocalise::localise("");
  KarnoLocalise::localise("OK");
  machine.runFor(1);

  EXPECT_THAT(machine.log(),
              ElementsAre(Line("WARN",
                               "KarnoLocalise: Failed to load data for 'Base.lproj: Strings.json'. Error=The "
                               "operation couldn’t be completed. Is a directory")));
}

// Its sentence alone would not say where the file is damaged.
TEST(LoadingStrings, WarnsAboutDamagedJsonWithTheWholeError) {
  FakePlatform machine;
  machine.withResource("Strings.json", "{").withResource("Base.lproj/Strings.json", R"({"OK": "Base"})");

  EXPECT_EQ(KarnoLocalise::localise("OK"), "Base");

  machine.runFor(1);
  EXPECT_THAT(
      machine.log(),
      ElementsAre(Line("WARN", "KarnoLocalise: Failed to serialise data for 'Locale: Strings.json'. Error=" +
                                   unreadable("Not JSON from byte 2 on.").description())));
}

TEST(LoadingStrings, WarnsAboutJsonThatIsNoObject) {
  FakePlatform machine;
  machine.withResource("Strings.json", "{}").withResource("Base.lproj/Strings.json", "[]");

  EXPECT_EQ(KarnoLocalise::localise("OK"), "OK");

  machine.runFor(1);
  EXPECT_THAT(machine.log(),
              ElementsAre(Line(
                  "WARN", "KarnoLocalise: Failed to serialise data for 'Base.lproj: Strings.json'. Error=" +
                              unreadable("The top level is not an object.").description())));
}

TEST(LoadingStrings, IsQuietAboutMembersThatAreNoTexts) {
  FakePlatform machine;
  machine.withResource("Strings.json", R"({"OK": 1, "YES": ["Ja"], "NO": "Nein"})");
  machine.withResource("Base.lproj/Strings.json", R"({"OK": "Base"})");

  EXPECT_EQ(KarnoLocalise::localise("OK"), "Base");
  EXPECT_EQ(KarnoLocalise::localise("NO"), "Nein");

  machine.runFor(1);
  EXPECT_THAT(machine.log(), IsEmpty());
}

TEST(LoadingStrings, TakesAnyResourceOfTheBundle) {
  FakePlatform machine;
  machine.withResource("de.lproj/Move.table", R"({"A": "one\\ntwo"})");

  const auto table = KarnoLocalise::loadStringsForResource("Move", "table", "de.lproj");

  EXPECT_EQ(table, (StringTable{{"A", "one\\ntwo"}}));
}

TEST(LoadingStrings, NamesTheResourceInItsWarnings) {
  FakePlatform machine;

  KarnoLocalise::loadStringsForResource("Move", "table", "de.lproj");
  KarnoLocalise::loadStringsForResource("Move", "table", "");
  machine.runFor(1);

  EXPECT_THAT(machine.log(),
              ElementsAre(Line("WARN", "KarnoLocalise: Failed to build path for 'de.lproj: Move.table'"),
                          Line("WARN", "KarnoLocalise: Failed to build path for 'Locale: Move.table'")));
}

}  // namespace
}  // namespace karno
