#include <gmock/gmock.h>

#include "app/startup_manager.h"
#include "elements_are.h"
#include "fake_platform.h"
#include "fresh_process.h"
#include "launcher.h"
#include "printing.h"

namespace karno {
namespace {

using karno::test::ElementsAre;
using test::FakePlatform;
using test::Launcher;
using test::Line;
using ::testing::ElementsAreArray;
using ::testing::IsEmpty;

const std::vector<Line> kStartLines = {
    {"STARTUP", "==================================================="},
    {"STARTUP", "Karno Log Started (defaults verboseLogging=0)"},
    {"STARTUP", "Karno Version: 3.2.1"},
    {"STARTUP", "Parent Process: launchd (1)"},
    {"INFO", "AppDelegate[MOVE] Check whether app needs to be moved"},
    {"INFO", "AppDelegate[MOVE] Karno does not need to be moved. Continuing..."},
    {"INFO", "EmbeddedApp[CONFIGURE] Use File Provider = Yes (first startup)"},
    {"INFO", "Startup[CHECK] Checking system for FileProvider..."},
    {"INFO", "Startup[CHECK] Using FileProvider"},
    {"INFO", "Main: System is okay - launching Karno"},
    {"INFO", "Startup[LAUNCH] Launching Karno.app"},
    {"INFO", "Startup[LAUNCH] Launched Karno.app (pid: 5001)"},
    {"INFO", "Main: Started Karno successfully"},
    {"INFO", "Sparkle[START] Starting Up"}};

std::vector<Line> startLinesAnd(const std::vector<Line>& more) {
  std::vector<Line> lines = kStartLines;
  lines.insert(lines.end(), more.begin(), more.end());
  return lines;
}

std::string text(const std::vector<Line>& lines) {
  std::string result;
  for (const Line& line : lines) result += "[" + line.level + "] " + line.message + "\n";
  return result;
}

TEST(WholeStart, OfTheFileProviderBuildUpToTheUsersQuit) {
  FakePlatform machine;
  machine.withEmbeddedBuilds();
  Launcher launcher(machine);

  launcher.finishLaunching();
  machine.runFor(2.05);
  machine.postMessage("user-selected-quit");
  machine.runFor(6);

  EXPECT_THAT(machine.log(),
              ElementsAreArray(startLinesAnd({{"INFO", "Notify[LISTEN] Received 'user-selected-quit'"},
                                              {"INFO", "AppDelegate[TERMINATE] Reason: User selected quit"},
                                              {"INFO", "AppDelegate:: Terminating"}})));
  EXPECT_EQ(machine.application.terminatedAtSeconds(), 3.05);
  EXPECT_EQ(machine.console(), machine.fullLogLines());
  EXPECT_EQ(machine.windows.prompt.closes(), 1);
  EXPECT_EQ(machine.windows.prompt.observerCount(), 0U);
  EXPECT_EQ(machine.notifications.observerCount(), 0U);
  EXPECT_THAT(machine.alerts.shown(), IsEmpty());
  EXPECT_THAT(machine.tasks.running(), ElementsAre(5001));
}

TEST(WholeStart, UpToTheEndOfTheEmbeddedApplication) {
  FakePlatform machine;
  machine.withEmbeddedBuilds();
  Launcher launcher(machine);

  launcher.finishLaunching();
  machine.runFor(2.05);
  machine.tasks.end(5001, 0);
  machine.runFor(6);

  EXPECT_THAT(machine.log(), ElementsAreArray(startLinesAnd(
                                 {{"WARN", "Startup[TERMINATED] Child terminated (status:0, reason:1)"},
                                  {"WARN", "Startup[TERMINATED] Embedded Karno.app terminated - quitting"},
                                  {"INFO", "AppDelegate[TERMINATE] Reason: Embedded Karno.app terminated"},
                                  {"INFO", "AppDelegate:: Terminating"}})));
}

TEST(WholeStart, WithoutTheEmbeddedBundleEndsInTheAlert) {
  FakePlatform machine;
  machine.withStrings(R"({"DRIVE_MOUNT_FAILED": "No drive.", "OK": "OK"})");
  Launcher launcher(machine);

  launcher.finishLaunching();
  machine.runFor(6);

  EXPECT_THAT(machine.alerts.shown(),
              ElementsAre(platform::Alert{.style = platform::AlertStyle::Critical,
                                          .messageText = "Karno",
                                          .informativeText = "No drive.",
                                          .buttons = {{.title = "OK", .keyEquivalent = ""}}}));
  const std::vector<Line> log = machine.log();
  ASSERT_GE(log.size(), 10U);
  EXPECT_THAT(
      std::vector<Line>(log.begin() + 10, log.end()),
      ElementsAre(
          Line("WARN",
               "Utilities[BUNDLE] Could not find bundle for Karno.app "
               "(path:/Applications/Karno.app/Contents/Helpers/Karno.app)"),
          Line("WARN", "Startup[LAUNCH] Failed to launch Karno. Reason: Could not find embedded Karno app"),
          Line("*** ERROR ***",
               "Startup[LAUNCH] Failed to launch Karno. Reason: Could not find embedded Karno app"),
          Line("*** ERROR ***", "Main: Failed to start Karno"),
          Line("INFO", "AppDelegate[TERMINATE] Reason: Failed to start Karno.app"),
          Line("INFO", "AppDelegate:: Terminating")));
}

TEST(WholeStart, TakesNoNoticeOfAWallClockThatIsSetBack) {
  FakePlatform machine;
  machine.withEmbeddedBuilds();
  Launcher launcher(machine);

  launcher.finishLaunching();
  machine.clock.setNow(platform::Date{});
  machine.runFor(2.05);
  machine.postMessage("user-selected-quit");
  machine.runFor(6);

  EXPECT_EQ(machine.application.terminatedAtSeconds(), 3.05);
}

// The whole story in a given order of all threads: what was logged, and when the launcher quit.
std::string startAndQuit(std::uint64_t seed) {
  FakePlatform machine(seed);
  machine.withEmbeddedBuilds();
  Launcher launcher(machine);
  launcher.finishLaunching();
  machine.runFor(2.05);
  machine.postMessage("user-selected-quit");
  machine.runFor(6);
  return text(machine.log()) + "quit after " + std::to_string(machine.application.terminatedAtSeconds());
}

TEST(WholeStart, HasTheSameOutcomeInTwoHundredOrdersOfTheThreads) {
  const std::string expected =
      text(startLinesAnd({{"INFO", "Notify[LISTEN] Received 'user-selected-quit'"},
                          {"INFO", "AppDelegate[TERMINATE] Reason: User selected quit"},
                          {"INFO", "AppDelegate:: Terminating"}})) +
      "quit after 3.050000";

  EXPECT_THAT(test::outcomesOtherThan(expected, 200, startAndQuit), IsEmpty());
}

// The wait for macFUSE does not know of the restart, nor the restart of the wait.
TEST(WholeStart, LaunchesASecondClientWhenARestartWasAskedForBeforeTheFirst) {
  FakePlatform machine;
  machine.withEmbeddedBuilds().withSystem("14.5.0", "arm64").withFirstStartup(false);
  Launcher launcher(machine);
  launcher.finishLaunching();
  machine.runFor(1);
  machine.windows.prompt.continueButton().press();
  machine.runFor(5);

  machine.postMessage("app-needs-restart");
  machine.runFor(2);
  machine.withFuse("4.4.1");
  machine.runFor(5);

  EXPECT_THAT(machine.tasks.running(), ElementsAre(5001, 5002));
}

// The child ends at the very moment at which it was launched, in any order with all that follows a launch.
std::string startWithAChildThatEndsAtOnce(std::uint64_t seed) {
  FakePlatform machine(seed);
  machine.withEmbeddedBuilds();
  Launcher launcher(machine);
  launcher.finishLaunching();
  machine.runUntil([&] { return !machine.tasks.running().empty(); }, 10);
  machine.tasks.end(5001, 1);
  machine.runFor(12);
  return "launches " + std::to_string(machine.tasks.launches().size()) + ", terminations " +
         std::to_string(machine.application.terminations()) + ", closes " +
         std::to_string(machine.windows.prompt.closes());
}

TEST(WholeStart, QuitsInEveryOrderWhenTheChildEndsAtOnce) {
  EXPECT_THAT(
      test::outcomesOtherThan("launches 1, terminations 1, closes 1", 200, startWithAChildThatEndsAtOnce),
      IsEmpty());
}

}  // namespace
}  // namespace karno
