#include <gmock/gmock.h>

#include <cerrno>

#include "elements_are.h"
#include "fake_platform.h"
#include "printing.h"
#include "system/fuse_manager.h"

namespace karno {
namespace {

using karno::test::ElementsAre;
using test::FakePlatform;
using test::Line;
using ::testing::IsEmpty;

constexpr const char* kURL = "https://api.github.com/repos/macfuse/macfuse/releases/latest";
constexpr const char* kOpenLine =
    R"(/bin/sh --noprofile -c "open -b com.apple.systempreferences /Library/PreferencePanes/macFUSE.prefPane")";
constexpr const char* kUpdateStrings =
    R"({"UPDATE": "Update", "MESSAGE_FUSE_UPGRADE_REQUIRED": "macFUSE is old.",
  "WHAT_WOULD_YOU_LIKE_TO_DO": "What now?", "CONTINUE": "Go on", "NOT_NOW": "Later"})";

const Line kChecking("INFO", std::string("Fuse[UPDATE] Checking for update (") + kURL + ")");

FuseManager& fuseManager() { return FuseManager::instance(); }

// A machine of the FUSE build with macFUSE 4.4.1, and that answer to the question for the latest release.
void prepare(FakePlatform& machine, const std::string& body) {
  machine.withFirstStartup(false)
      .withUserSetting("useFileProvider", false)
      .withFuse("4.4.1")
      .withStrings(kUpdateStrings);
  machine.network.bodies[kURL] = body;
}

struct Extraction {
  const char* text;
  std::optional<std::string> version;
};

class ExtractVersion : public ::testing::TestWithParam<Extraction> {};

TEST_P(ExtractVersion, FindsTheFirstDottedVersion) {
  FakePlatform machine;

  EXPECT_EQ(FuseManager::extractVersionFromString(GetParam().text), GetParam().version);
}

INSTANTIATE_TEST_SUITE_P(Texts, ExtractVersion,
                         ::testing::Values(Extraction{"macFUSE 4.5.0", "4.5.0"},
                                           Extraction{"macfuse-4.4.1", "4.4.1"},
                                           Extraction{"4", std::nullopt}, Extraction{"", std::nullopt},
                                           Extraction{"4. 5", std::nullopt}, Extraction{"4.", std::nullopt},
                                           Extraction{".5", std::nullopt},
                                           Extraction{"a 10.20 and 3.4", "10.20"},
                                           Extraction{"1.2.3.4.5-rc.1", "1.2.3.4.5"},
                                           Extraction{"4..5.6", "5.6"}, Extraction{"Grüße 4.5", "4.5"}));

struct Answer {
  const char* body;
  std::optional<std::string> version;
  const char* line;
};

class LatestVersion : public ::testing::TestWithParam<Answer> {};

TEST_P(LatestVersion, IsTakenFromTheNameElseFromTheTag) {
  FakePlatform machine;
  prepare(machine, GetParam().body);

  EXPECT_EQ(fuseManager().retrieveLatestVersionAvailable(), GetParam().version);
  EXPECT_THAT(machine.consoleMessages(), ElementsAre(kChecking, Line("INFO", GetParam().line)));
}

INSTANTIATE_TEST_SUITE_P(
    Records, LatestVersion,
    ::testing::Values(
        Answer{R"({"name": "macFUSE 4.5.0", "tag_name": "macfuse-4.4.9"})", "4.5.0",
               "Fuse[UPDATE] Latest version: name='macFUSE 4.5.0' (tag_name='macfuse-4.4.9') => '4.5.0'"},
        Answer{R"({"name": "macFUSE", "tag_name": "macfuse-4.5.0"})", "4.5.0",
               "Fuse[UPDATE] Latest version: name='macFUSE' (tag_name='macfuse-4.5.0') => '4.5.0'"},
        Answer{R"({"tag_name": "macfuse-4.5.0"})", "4.5.0",
               "Fuse[UPDATE] Latest version: name='(null)' (tag_name='macfuse-4.5.0') => '4.5.0'"},
        Answer{R"({"name": "new", "tag_name": "newer"})", std::nullopt,
               "Fuse[UPDATE] Latest version: name='new' (tag_name='newer') => '(null)'"},
        Answer{"{}", std::nullopt,
               "Fuse[UPDATE] Latest version: name='(null)' (tag_name='(null)') => '(null)'"},
        Answer{R"({"name": 4.5, "tag_name": "macfuse-4.5.0"})", "4.5.0",
               "Fuse[UPDATE] Latest version: name='4.5' (tag_name='macfuse-4.5.0') => '4.5.0'"},
        Answer{R"({"name": 4.5, "tag_name": null})", std::nullopt,
               "Fuse[UPDATE] Latest version: name='4.5' (tag_name='null') => '(null)'"},
        Answer{R"({"name": ["4.5.0"], "tag_name": {"a": "4.5.0"}})", std::nullopt,
               R"(Fuse[UPDATE] Latest version: name='["4.5.0"]' (tag_name='{"a":"4.5.0"}') => '(null)')"}));

std::string recordWithANameNested(std::size_t levels) {
  return R"({"name": )" + std::string(levels, '[') + std::string(levels, ']') +
         R"(, "tag_name": "macfuse-4.5.0"})";
}

TEST(LatestVersion, IsTakenFromARecordThatIsNestedAsDeeplyAsTheMacReads) {
  FakePlatform machine;
  prepare(machine, recordWithANameNested(511));

  EXPECT_EQ(fuseManager().retrieveLatestVersionAvailable(), "4.5.0");
}

// Printing it would overflow the stack.
TEST(LatestVersionFailure, IsARecordThatIsNestedTooDeeply) {
  FakePlatform machine;
  prepare(machine, recordWithANameNested(1'000'000));

  EXPECT_EQ(fuseManager().retrieveLatestVersionAvailable(), std::nullopt);
  EXPECT_THAT(
      machine.consoleMessages(),
      ElementsAre(kChecking, Line("*** ERROR ***",
                                  "Fuse[UPDATE] Failed to parse metadata. Reason: The record is nested "
                                  "too deeply.")));
}

TEST(LatestVersionFailure, IsLoggedWhenTheNetworkFails) {
  FakePlatform machine;

  EXPECT_EQ(fuseManager().retrieveLatestVersionAvailable(), std::nullopt);
  EXPECT_THAT(
      machine.consoleMessages(),
      ElementsAre(kChecking, Line("*** ERROR ***",
                                  "Fuse[UPDATE] Failed to retrieve metadata. Reason: The Internet connection "
                                  "appears to be offline.")));
}

class BadRecord : public ::testing::TestWithParam<std::pair<const char*, const char*>> {};

TEST_P(BadRecord, IsLogged) {
  FakePlatform machine;
  prepare(machine, GetParam().first);

  EXPECT_EQ(fuseManager().retrieveLatestVersionAvailable(), std::nullopt);
  EXPECT_EQ(machine.consoleMessages().size(), 2U);
  EXPECT_EQ(machine.consoleMessages().back().level, "*** ERROR ***");
  EXPECT_THAT(machine.consoleMessages().back().message, ::testing::StartsWith(GetParam().second));
}

INSTANTIATE_TEST_SUITE_P(
    LatestVersion, BadRecord,
    ::testing::Values(
        std::pair{"<html>", "Fuse[UPDATE] Failed to parse metadata. Reason: "},
        std::pair{"", "Fuse[UPDATE] Failed to parse metadata. Reason: "},
        std::pair{"{\"name\": \"\xFF\"}", "Fuse[UPDATE] Failed to parse metadata. Reason: "},
        std::pair{"[{\"name\": \"4.5.0\"}]",
                  "Fuse[UPDATE] Failed to parse metadata. Reason: The record is no object but array."},
        std::pair{"\"4.5.0\"",
                  "Fuse[UPDATE] Failed to parse metadata. Reason: The record is no object but string."}));

TEST(LatestVersionHost, ComesFromTheBundle) {
  FakePlatform machine;
  machine.bundles.main().info.insert_or_assign("KarnoReleasesHost", "localhost:8443");
  machine.network.bodies["https://localhost:8443/repos/macfuse/macfuse/releases/latest"] =
      R"({"name": "5.0"})";

  EXPECT_EQ(fuseManager().retrieveLatestVersionAvailable(), "5.0");
}

class BadHost : public ::testing::TestWithParam<const char*> {};

TEST_P(BadHost, IsNeverAskedFor) {
  FakePlatform machine;
  machine.bundles.main().info.insert_or_assign("KarnoReleasesHost", GetParam());
  const std::string url = std::string("https://") + GetParam() + "/repos/macfuse/macfuse/releases/latest";

  EXPECT_EQ(fuseManager().retrieveLatestVersionAvailable(), std::nullopt);
  EXPECT_THAT(machine.consoleMessages(),
              ElementsAre(Line("INFO", "Fuse[UPDATE] Checking for update (" + url + ")"),
                          Line("*** ERROR ***",
                               "Fuse[UPDATE] Failed to retrieve metadata. Invalid url '" + url + "'")));
  EXPECT_THAT(machine.network.requests, IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(LatestVersionHost, BadHost,
                         ::testing::Values("two words", "host:port", "user@host", "ex\"ample"));

TEST(LatestVersionHost, ThatIsNoTextIsThePublicOne) {
  FakePlatform machine;
  prepare(machine, R"({"name": "5.0"})");
  machine.bundles.main().info.insert_or_assign("KarnoReleasesHost", 5);

  EXPECT_EQ(fuseManager().retrieveLatestVersionAvailable(), "5.0");
}

struct Availability {
  const char* installed;
  const char* latest;
  bool isAvailable;
  const char* line;
};

class UpdateAvailable : public ::testing::TestWithParam<Availability> {};

TEST_P(UpdateAvailable, WhenTheInstalledVersionIsOlder) {
  FakePlatform machine;
  prepare(machine, std::string(R"({"name": ")") + GetParam().latest + "\"}");
  machine.withFuse(GetParam().installed);

  EXPECT_EQ(fuseManager().isUpdateAvailable(), GetParam().isAvailable);
  EXPECT_EQ(machine.consoleMessages().back(), Line("INFO", GetParam().line));
}

INSTANTIATE_TEST_SUITE_P(
    Versions, UpdateAvailable,
    ::testing::Values(
        Availability{"4.4.1", "4.5.0", true,
                     "Fuse[UPDATE] Installed Version=4.4.1, Latest Version=4.5.0 (update available=YES)"},
        Availability{"4.4.1", "4.4.1", false,
                     "Fuse[UPDATE] Installed Version=4.4.1, Latest Version=4.4.1 (update available=NO)"},
        Availability{"4.10.0", "4.9.9", false,
                     "Fuse[UPDATE] Installed Version=4.10.0, Latest Version=4.9.9 (update available=NO)"},
        Availability{"13.0", "13.0.0", false,
                     "Fuse[UPDATE] Installed Version=13.0, Latest Version=13.0.0 (update available=NO)"}));

TEST(UpdateAvailability, IsNoneWithoutMacFUSE) {
  FakePlatform machine;
  machine.network.bodies[kURL] = R"({"name": "4.5.0"})";

  EXPECT_FALSE(fuseManager().isUpdateAvailable());
  EXPECT_EQ(
      machine.consoleMessages().back(),
      Line("INFO", "Fuse[UPDATE] Installed Version=(null), Latest Version=4.5.0 (update available=NO)"));
}

TEST(UpdateAvailability, IsNoneWhenTheLatestIsNotKnown) {
  FakePlatform machine;
  prepare(machine, "{}");

  EXPECT_FALSE(fuseManager().isUpdateAvailable());
  EXPECT_EQ(machine.consoleMessages().back(), Line("WARN", "Fuse[UPDATE] Failed to check for an update"));
}

TEST(UpdatePrompt, IsSkippedForTheFileProviderBuildOnTheCallingThread) {
  FakePlatform machine;
  machine.withUserSetting("useFileProvider", true);
  std::string thread;

  machine.onThread(
      [&] {
        fuseManager().promptUserIfUpdateIsAvailableCompletion(
            [&] { thread = machine.scheduler.currentThreadName(); });
      },
      "caller");
  machine.runUntilIdle();

  EXPECT_EQ(thread, "caller");
  EXPECT_THAT(machine.network.requests, IsEmpty());
  EXPECT_THAT(
      machine.consoleMessages(),
      ElementsAre(Line("INFO", "Fuse[START] Not checking for a Fuse update - as we use a FileProvider")));
}

// Runs the whole flow and tells on which threads the completion ran.
std::vector<std::string> completions(FakePlatform& machine) {
  std::vector<std::string> threads;
  machine.onThread([&] {
    fuseManager().promptUserIfUpdateIsAvailableCompletion(
        [&] { threads.push_back(machine.scheduler.currentThreadName()); });
  });
  machine.runUntilIdle();
  return threads;
}

TEST(UpdatePrompt, AsksTheNetworkInTheBackground) {
  FakePlatform machine;
  prepare(machine, R"({"name": "4.4.1"})");

  EXPECT_THAT(completions(machine), ElementsAre("main"));
  EXPECT_EQ(machine.network.requests.at(0).thread,
            "it.vantul.KarnoWrapper.bg.00000000-0000-4000-8000-000000000001");
  EXPECT_THAT(machine.alerts.shown(), IsEmpty());
}

TEST(UpdatePrompt, ShowsNothingWhenTheNetworkFails) {
  FakePlatform machine;
  machine.withUserSetting("useFileProvider", false);

  EXPECT_THAT(completions(machine), ElementsAre("main"));
  EXPECT_THAT(machine.alerts.shown(), IsEmpty());
}

TEST(UpdatePrompt, OpensThePreferencePaneWhenTheUserContinues) {
  FakePlatform machine;
  prepare(machine, R"({"name": "4.5.0"})");
  machine.alerts.answerNext(1000);

  EXPECT_THAT(completions(machine), ElementsAre("main"));

  EXPECT_THAT(machine.alerts.shown(),
              ElementsAre(platform::Alert{.style = platform::AlertStyle::Informational,
                                          .messageText = "Update",
                                          .informativeText = "macFUSE is old.\n\nWhat now?",
                                          .buttons = {{.title = "Go on", .keyEquivalent = ""},
                                                      {.title = "Later", .keyEquivalent = "\033"}}}));
  EXPECT_THAT(machine.shell.lines(), ElementsAre(kOpenLine));
  EXPECT_EQ(machine.shell.opened.at(0).thread, "main");
  EXPECT_THAT(
      machine.consoleMessages(),
      ElementsAre(
          kChecking, Line("INFO", "Fuse[UPDATE] Latest version: name='4.5.0' (tag_name='(null)') => '4.5.0'"),
          Line("INFO", "Fuse[UPDATE] Installed Version=4.4.1, Latest Version=4.5.0 (update available=YES)"),
          Line("INFO", "Fuse[UPDATE] Prompting user - Fuse update is available"),
          Line("INFO", "Fuse[UPDATE] User continued - Opening Fuse preference pane.")));
}

// It comes through the main dispatch queue, which waits for the block of it that runs.
TEST(UpdatePrompt, WaitsForAnAlertThatIsOpen) {
  FakePlatform machine;
  prepare(machine, R"({"name": "4.5.0"})");
  std::size_t shownWhileUp = 0;
  machine.alerts.answerNext(1000, [&] {
    fuseManager().promptUserIfUpdateIsAvailableCompletion(nullptr);
    machine.runUntilIdle();
    shownWhileUp = machine.alerts.shown().size();
  });

  machine.dispatch.mainQueue().async([&] { machine.alerts.runModal({}); });
  machine.runUntilIdle();

  EXPECT_EQ(shownWhileUp, 1U);
  EXPECT_EQ(machine.alerts.shown().size(), 2U);
}

TEST(UpdatePrompt, IsLoggedBeforeItIsShown) {
  FakePlatform machine;
  prepare(machine, R"({"name": "4.5.0"})");
  Line lastLineWhileUp("", "");
  machine.alerts.answerNext(1001, [&] { lastLineWhileUp = machine.consoleMessages().back(); });

  completions(machine);

  EXPECT_EQ(lastLineWhileUp, Line("INFO", "Fuse[UPDATE] Prompting user - Fuse update is available"));
}

class OtherAnswer : public ::testing::TestWithParam<long> {};

TEST_P(OtherAnswer, OpensNothing) {
  FakePlatform machine;
  prepare(machine, R"({"name": "4.5.0"})");
  machine.alerts.answerNext(GetParam());

  EXPECT_THAT(completions(machine), ElementsAre("main"));
  EXPECT_THAT(machine.shell.lines(), IsEmpty());
  EXPECT_EQ(machine.consoleMessages().back(), Line("INFO", "Fuse[UPDATE] User chose not to continue."));
}

INSTANTIATE_TEST_SUITE_P(UpdatePrompt, OtherAnswer, ::testing::Values(1001, 1002, 0, -1));

TEST(UpdatePrompt, TellsWhenTheCommandCannotBeStarted) {
  FakePlatform machine;
  prepare(machine, R"({"name": "4.5.0"})");
  machine.shell.openFailures[kOpenLine] = EMFILE;

  EXPECT_THAT(completions(machine), ElementsAre("main"));
  EXPECT_EQ(machine.consoleMessages().back(),
            Line("*** ERROR ***",
                 "Fuse[UPDATE] Failed to open Fuse preference pane. Reason: failed to run command"));
}

TEST(UpdatePrompt, TakesNoOffenceAtACommandWhoseEndIsNotLearnt) {
  FakePlatform machine;
  prepare(machine, R"({"name": "4.5.0"})");
  machine.shell.closeFailures[kOpenLine] = true;

  EXPECT_THAT(completions(machine), ElementsAre("main"));
  EXPECT_EQ(machine.consoleMessages().back(),
            Line("WARN", std::string("Utilities:: Command Failed (") + kOpenLine + ")"));
}

TEST(UpdatePrompt, NeedsNoCompletion) {
  FakePlatform machine;
  prepare(machine, R"({"name": "4.5.0"})");
  machine.alerts.answerNext(1001);

  fuseManager().promptUserIfUpdateIsAvailableCompletion(nullptr);
  machine.runUntilIdle();

  EXPECT_EQ(machine.alerts.shown().size(), 1U);
}

TEST(UpdatePrompt, NeedsNoCompletionWhenSkippedEither) {
  FakePlatform machine;
  machine.withUserSetting("useFileProvider", true);

  fuseManager().promptUserIfUpdateIsAvailableCompletion(nullptr);

  EXPECT_EQ(machine.consoleMessages().size(), 1U);
}

}  // namespace
}  // namespace karno
