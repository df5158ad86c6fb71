#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "elements_are.h"
#include "ipc/wrapper_protocol.h"
#include "karnoctl_documents.h"
#include "terminal.h"

namespace karno::karnoctl {
namespace {

using karno::test::ElementsAre;
using test::ManualPage;
using test::offeredByBash;
using test::Words;
using test::WordSet;
using test::ZshCompletion;
using ::testing::ElementsAreArray;
using ::testing::IsEmpty;
using ::testing::Not;
using ::testing::UnorderedElementsAre;

// One place says which verbs there are; what people and shells are told follows it.
TEST(KarnoctlVerbs, AreKnownToTheManualPageAndToBothShells) {
  Words verbs = test::verbsOfTool();
  verbs.push_back("help");

  EXPECT_EQ(ManualPage().verbs(), verbs);
  EXPECT_EQ(ZshCompletion().verbs(), verbs);
  verbs.insert(verbs.end(), {"--help", "--version"});
  EXPECT_EQ(offeredByBash({"karnoctl", ""}), verbs);
}

TEST(KarnoctlInBash, IsCompletedByItsFunction) {
  EXPECT_THAT(test::linesFromBash("source \"$0\"; complete -p karnoctl"),
              ElementsAre("complete -F _karnoctl karnoctl"));
}

TEST(KarnoctlInBash, OffersTheVerbsThatBeginLikeTheWord) {
  EXPECT_THAT(offeredByBash({"karnoctl", "ex"}), ElementsAre("explain"));
  EXPECT_THAT(offeredByBash({"karnoctl", "--v"}), ElementsAre("--version"));
  EXPECT_THAT(offeredByBash({"karnoctl", "explode"}), IsEmpty());
}

TEST(KarnoctlInBash, OffersTheMessagesInTheOrderOfTheProtocol) {
  EXPECT_THAT(offeredByBash({"karnoctl", "post", ""}), ElementsAreArray(kWrapperMessages));
  EXPECT_THAT(offeredByBash({"karnoctl", "post", "app-is"}),
              ElementsAre("app-is-terminating", "app-is-terminating-abnormally"));
  EXPECT_THAT(offeredByBash({"karnoctl", "post", "--reason", "disk full", "app-n"}),
              ElementsAre("app-needs-restart"));
}

TEST(KarnoctlInBash, OffersNothingForAFreeText) {
  EXPECT_THAT(offeredByBash({"karnoctl", "post", "app-is-terminating-abnormally", "--reason", ""}),
              IsEmpty());
  EXPECT_THAT(offeredByBash({"karnoctl", "post", "--reason", "=", "a"}), IsEmpty());
}

// bash 3.2 leaves "--color=a" in one piece; later ones take it apart at the equals sign.
TEST(KarnoctlInBash, OffersTheValuesOfAnOption) {
  EXPECT_THAT(offeredByBash({"karnoctl", "log", "--color", ""}), ElementsAre("auto", "always", "never"));
  EXPECT_THAT(offeredByBash({"karnoctl", "log", "--color", "="}), ElementsAre("auto", "always", "never"));
  EXPECT_THAT(offeredByBash({"karnoctl", "log", "--color", "=", "a"}), ElementsAre("auto", "always"));
  EXPECT_THAT(offeredByBash({"karnoctl", "log", "--color=a"}), ElementsAre("auto", "always"));
  EXPECT_THAT(offeredByBash({"karnoctl", "log", "--follow", "--lines", ""}), ElementsAre("all"));
}

class KarnoctlValueInBash : public testing::TestWithParam<std::string> {};

TEST_P(KarnoctlValueInBash, IsOneThatTheToolTakes) {
  const Words offered = offeredByBash({"karnoctl", "log", GetParam(), ""});

  ASSERT_THAT(offered, Not(IsEmpty()));
  for (const std::string& value : offered) {
    test::FakePlatform machine;
    machine.files.addFile(test::kLogFile, "");
    EXPECT_EQ(test::Terminal().run({"log", GetParam(), value}), 0) << value;
  }
}

INSTANTIATE_TEST_SUITE_P(Each, KarnoctlValueInBash, testing::Values("--color", "--lines"));

TEST(KarnoctlInBash, OffersFoldersForABundle) {
  EXPECT_THAT(offeredByBash({"karnoctl", "self-check", KARNO_SOURCES "/src/m"}),
              ElementsAre(KARNO_SOURCES "/src/move"));
}

TEST(KarnoctlInBash, OffersFilesForAReport) {
  EXPECT_THAT(offeredByBash({"karnoctl", "report", "--output", KARNO_SOURCES "/src/main"}),
              ElementsAre(KARNO_SOURCES "/src/main.cpp"));
}

TEST(KarnoctlInBash, OffersNothingForANumberOfSeconds) {
  EXPECT_THAT(offeredByBash({"karnoctl", "quit", "--wait", ""}), IsEmpty());
}

TEST(KarnoctlInBash, OffersTheVerbsToHelp) {
  Words verbs = offeredByBash({"karnoctl", ""});
  verbs.resize(verbs.size() - 3);  // help itself, --help, --version

  EXPECT_EQ(offeredByBash({"karnoctl", "help", ""}), verbs);
  EXPECT_THAT(offeredByBash({"karnoctl", "help", "log", ""}), IsEmpty());
}

TEST(KarnoctlInBash, OffersNothingAfterAWordThatIsNoVerb) {
  EXPECT_THAT(offeredByBash({"karnoctl", "--version", ""}), IsEmpty());
  EXPECT_THAT(offeredByBash({"karnoctl", "explode", ""}), IsEmpty());
}

TEST(KarnoctlInZsh, HasAllMessagesInTheOrderOfTheProtocol) {
  EXPECT_THAT(ZshCompletion().messages(), ElementsAreArray(kWrapperMessages));
}

TEST(KarnoctlInZsh, HasTheOptionsThatStandWithoutAVerb) {
  EXPECT_EQ(ZshCompletion().optionsOf(""), (WordSet{"--help", "--version"}));
}

class KarnoctlVerbInAShell : public testing::TestWithParam<std::string> {};

TEST_P(KarnoctlVerbInAShell, TakesTheOptionsThatItsHelpSpeaksOf) {
  const command_line::Verb verb = test::verbOfTool(GetParam());
  WordSet taken{"--help"};
  for (const auto& names : {verb.options, verb.texts, verb.flags}) taken.insert(names.begin(), names.end());

  EXPECT_EQ(taken, test::optionsOfTool(GetParam()));
}

TEST_P(KarnoctlVerbInAShell, HasItsOptionsAndNoOthersInBash) {
  const Words offered = offeredByBash({"karnoctl", GetParam(), "-"});

  EXPECT_EQ(WordSet(offered.begin(), offered.end()), test::optionsOfTool(GetParam()));
}

TEST_P(KarnoctlVerbInAShell, HasItsOptionsAndNoOthersInZsh) {
  EXPECT_EQ(ZshCompletion().optionsOf(GetParam()), test::optionsOfTool(GetParam()));
}

TEST_P(KarnoctlVerbInAShell, IsDescribedInZshAsTheToolDescribesIt) {
  EXPECT_EQ(ZshCompletion().summaryOf(GetParam()), test::verbOfTool(GetParam()).summary);
}

INSTANTIATE_TEST_SUITE_P(Each, KarnoctlVerbInAShell, testing::ValuesIn(test::verbsOfTool()));

}  // namespace
}  // namespace karno::karnoctl
