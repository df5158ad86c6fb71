#include <gmock/gmock.h>

#include "app/karno_embedded_app.h"
#include "app/startup_manager.h"
#include "elements_are.h"
#include "fake_platform.h"
#include "launcher.h"
#include "log/karno_log.h"
#include "platform/tasks.h"
#include "printing.h"

namespace karno {
namespace {

using karno::test::ElementsAre;
using platform::TerminationReason;
using test::FakePlatform;
using test::Line;
using test::StartupRecorder;
using ::testing::IsEmpty;

const Line kChosen("INFO", "EmbeddedApp[CONFIGURE] Use File Provider = Yes (first startup)");
const Line kLaunching("INFO", "Startup[LAUNCH] Launching Karno.app");
const Line kLaunched("INFO", "Startup[LAUNCH] Launched Karno.app (pid: 5001)");

const Error kRefused("NSCocoaErrorDomain", 4, {{"NSLocalizedDescription", "The file is damaged."}});

// Notes the completions of launches.
struct Completion {
  std::vector<bool> successes;
  std::vector<std::int32_t> processIdentifiers;  // that the manager had when it completed
  std::optional<Error> error;

  StartupManager::LaunchCompletion note() {
    return [this](bool success, const std::optional<Error>& ofLaunch) {
      successes.push_back(success);
      processIdentifiers.push_back(StartupManager::instance().embeddedKarnoProcessIdentifier());
      error = ofLaunch;
    };
  }
};

TEST(Launch, GivesTheChildOneSingleArgument) {
  FakePlatform machine;
  machine.withEmbeddedBuilds();
  machine.processes.current = 4711;
  Completion completion;

  StartupManager::instance().launchKarnoWithCompletion(completion.note());

  ASSERT_EQ(machine.tasks.launches().size(), 1U);
  EXPECT_THAT(machine.tasks.launches()[0].arguments, ElementsAre("--parent 4711"));
  EXPECT_EQ(machine.tasks.launches()[0].executablePath,
            "/Applications/Karno.app/Contents/Helpers/Karno.app/Contents/MacOS/Karno");
}

TEST(Launch, RunsWhollyOnItsCallersThreadAndCompletesOnceBeforeItReturns) {
  FakePlatform machine;
  machine.withEmbeddedBuilds();
  Completion completion;
  std::vector<bool> successesAtReturn;

  machine.onThread(
      [&] {
        StartupManager::instance().launchKarnoWithCompletion(completion.note());
        successesAtReturn = completion.successes;
      },
      "caller");
  machine.runUntilIdle();

  EXPECT_THAT(successesAtReturn, ElementsAre(true));
  EXPECT_EQ(completion.error, std::nullopt);
  EXPECT_EQ(machine.tasks.launches().at(0).thread, "caller");
  EXPECT_THAT(machine.consoleMessages(), ElementsAre(kChosen, kLaunching, kLaunched));
}

TEST(Launch, KeepsTheIdentifierOfTheLastChildWhenTheBundleHasGone) {
  FakePlatform machine;
  machine.withEmbeddedBuilds();
  Completion first;
  StartupManager::instance().launchKarnoWithCompletion(first.note());
  machine.bundles.removeHelper("Karno.app");
  KarnoEmbeddedApp::manager().setBundle(nullptr);
  Completion second;

  StartupManager::instance().launchKarnoWithCompletion(second.note());

  EXPECT_THAT(second.successes, ElementsAre(false));
  EXPECT_EQ(second.error->code(), 2);
  EXPECT_EQ(StartupManager::instance().embeddedKarnoProcessIdentifier(), 5001);
}

TEST(Launch, NamesTheBuildThatItStarts) {
  FakePlatform machine;
  machine.withEmbeddedBuilds().withArguments({"-launch", "Karno(Fuse).app"});
  Completion completion;

  StartupManager::instance().launchKarnoWithCompletion(completion.note());

  EXPECT_THAT(machine.consoleMessages(),
              ElementsAre(Line("INFO", "Startup[LAUNCH] Launching Karno(Fuse).app"),
                          Line("INFO", "Startup[LAUNCH] Launched Karno(Fuse).app (pid: 5001)")));
  EXPECT_EQ(machine.tasks.launches().at(0).executablePath,
            "/Applications/Karno.app/Contents/Helpers/Karno(Fuse).app/Contents/MacOS/Karno(Fuse)");
}

TEST(Launch, KeepsTheProcessIdentifierOfTheLastChild) {
  FakePlatform machine;
  machine.withEmbeddedBuilds();
  StartupManager& manager = StartupManager::instance();
  Completion completion;
  const std::int32_t before = manager.embeddedKarnoProcessIdentifier();

  manager.launchKarnoWithCompletion(completion.note());
  const std::int32_t first = manager.embeddedKarnoProcessIdentifier();
  manager.launchKarnoWithCompletion(completion.note());
  const std::int32_t second = manager.embeddedKarnoProcessIdentifier();

  EXPECT_EQ(before, 0);
  EXPECT_EQ(first, 5001);
  EXPECT_EQ(second, 5002);
}

TEST(Launch, HasStoredTheProcessIdentifierWhenItCompletes) {
  FakePlatform machine;
  machine.withEmbeddedBuilds();
  Completion completion;

  StartupManager::instance().launchKarnoWithCompletion(completion.note());
  machine.tasks.failNextLaunch(kRefused);
  StartupManager::instance().launchKarnoWithCompletion(completion.note());

  EXPECT_THAT(completion.processIdentifiers, ElementsAre(5001, -1));
}

TEST(LaunchWithoutABundle, FailsWithCode2AndLeavesTheProcessIdentifierUnchanged) {
  FakePlatform machine;
  Completion completion;

  StartupManager::instance().launchKarnoWithCompletion(completion.note());

  EXPECT_THAT(completion.successes, ElementsAre(false));
  EXPECT_EQ(completion.error, Error("NSPOSIXErrorDomain", 2,
                                    {{"NSLocalizedDescription", "Could not find embedded Karno app"}}));
  EXPECT_EQ(StartupManager::instance().embeddedKarnoProcessIdentifier(), 0);
  EXPECT_THAT(machine.tasks.launches(), IsEmpty());
}

TEST(LaunchWithoutABundle, WarnsTwice) {
  FakePlatform machine;
  Completion completion;

  StartupManager::instance().launchKarnoWithCompletion(completion.note());

  EXPECT_THAT(
      machine.consoleMessages(),
      ElementsAre(
          kChosen,
          Line("WARN",
               "Utilities[BUNDLE] Could not find bundle for Karno.app "
               "(path:/Applications/Karno.app/Contents/Helpers/Karno.app)"),
          Line("WARN", "Startup[LAUNCH] Failed to launch Karno. Reason: Could not find embedded Karno app")));
}

TEST(LaunchThatIsRefused, SetsTheProcessIdentifierToMinusOneAndPassesTheErrorOn) {
  FakePlatform machine;
  machine.withEmbeddedBuilds();
  machine.tasks.failNextLaunch(kRefused);
  Completion completion;

  StartupManager::instance().launchKarnoWithCompletion(completion.note());

  EXPECT_THAT(completion.successes, ElementsAre(false));
  EXPECT_EQ(completion.error, kRefused);
  EXPECT_EQ(StartupManager::instance().embeddedKarnoProcessIdentifier(), -1);
}

TEST(LaunchThatIsRefused, WarnsWithTheExecutablesURLAndTheWholeError) {
  FakePlatform machine;
  machine.withEmbeddedBuilds();
  machine.tasks.failNextLaunch(kRefused);
  Completion completion;

  StartupManager::instance().launchKarnoWithCompletion(completion.note());

  EXPECT_THAT(
      machine.consoleMessages(),
      ElementsAre(kChosen, kLaunching,
                  Line("WARN",
                       "Startup[LAUNCH] Failed to launch "
                       "'file:///Applications/Karno.app/Contents/Helpers/Karno.app/Contents/MacOS/Karno'. "
                       "Reason: Error Domain=NSCocoaErrorDomain Code=4 \"The file is damaged.\" "
                       "UserInfo={NSLocalizedDescription=The file is damaged.}")));
}

TEST(LaunchThatIsRefused, ReplacesTheProcessIdentifierOfAnEarlierChild) {
  FakePlatform machine;
  machine.withEmbeddedBuilds();
  Completion completion;
  StartupManager::instance().launchKarnoWithCompletion(completion.note());
  machine.tasks.failNextLaunch(kRefused);

  StartupManager::instance().launchKarnoWithCompletion(completion.note());

  EXPECT_EQ(StartupManager::instance().embeddedKarnoProcessIdentifier(), -1);
}

TEST(LaunchOfABundleWithoutAnExecutable, FailsAsALaunchThatIsRefused) {
  FakePlatform machine;
  machine.bundles.addHelper("Karno.app", "it.vantul.Karno", false);
  Completion completion;

  StartupManager::instance().launchKarnoWithCompletion(completion.note());

  EXPECT_THAT(completion.successes, ElementsAre(false));
  EXPECT_EQ(StartupManager::instance().embeddedKarnoProcessIdentifier(), -1);
  EXPECT_THAT(machine.tasks.launches(), IsEmpty());
  EXPECT_THAT(machine.consoleMessages(),
              ElementsAre(kChosen, kLaunching,
                          Line("WARN",
                               "Startup[LAUNCH] Failed to launch '(null)'. Reason: Error "
                               "Domain=NSPOSIXErrorDomain Code=2 \"The application has no executable file\" "
                               "UserInfo={NSLocalizedDescription=The application has no executable file}")));
}

TEST(LaunchKarno, ReturnsAtOnce) {
  FakePlatform machine;
  machine.withEmbeddedBuilds();

  StartupManager::instance().launchKarno();

  EXPECT_THAT(machine.tasks.launches(), IsEmpty());
}

TEST(LaunchKarno, TellsTheDelegateAndThenStartsTheUpdaterOnAGlobalQueue) {
  FakePlatform machine;
  machine.withEmbeddedBuilds();
  const auto delegate = std::make_shared<StartupRecorder>(machine);
  StartupManager::instance().setDelegate(delegate);

  StartupManager::instance().launchKarno();
  machine.runUntilIdle();

  EXPECT_THAT(delegate->calls, ElementsAre("launched on global(0)"));
  EXPECT_THAT(machine.consoleMessages(),
              ElementsAre(kChosen, kLaunching, kLaunched, Line("INFO", "Sparkle[START] Starting Up")));
  EXPECT_EQ(machine.consoleLog.entries().back().thread, "global(0)");
}

TEST(LaunchKarno, StartsTheUpdaterAgainAfterEveryLaterSuccess) {
  FakePlatform machine;
  machine.withEmbeddedBuilds();

  StartupManager::instance().launchKarno();
  machine.runUntilIdle();
  StartupManager::instance().launchKarno();
  machine.runUntilIdle();

  const std::vector<Line> lines = machine.consoleMessages();
  EXPECT_EQ(std::count(lines.begin(), lines.end(), Line("INFO", "Sparkle[START] Starting Up")), 2);
}

TEST(LaunchKarno, ThatFailsLogsTheLocalisedDescriptionAndStartsNoUpdater) {
  FakePlatform machine;
  machine.withEmbeddedBuilds();
  machine.tasks.failNextLaunch(kRefused);
  const auto delegate = std::make_shared<StartupRecorder>(machine);
  StartupManager::instance().setDelegate(delegate);

  StartupManager::instance().launchKarno();
  machine.runUntilIdle();

  EXPECT_THAT(delegate->calls, ElementsAre("launch failed on global(0)"));
  EXPECT_EQ(machine.consoleMessages().back(),
            Line("*** ERROR ***", "Startup[LAUNCH] Failed to launch Karno. Reason: The file is damaged."));
}

TEST(LaunchKarno, WithoutABundleLogsThatAsAnError) {
  FakePlatform machine;
  const auto delegate = std::make_shared<StartupRecorder>(machine);
  StartupManager::instance().setDelegate(delegate);

  StartupManager::instance().launchKarno();
  machine.runUntilIdle();

  EXPECT_THAT(delegate->calls, ElementsAre("launch failed on global(0)"));
  EXPECT_EQ(machine.consoleMessages().back(),
            Line("*** ERROR ***",
                 "Startup[LAUNCH] Failed to launch Karno. Reason: Could not find embedded Karno app"));
}

// A launched child, and what is logged from its end on.
class ChildsEnd : public ::testing::Test {
 protected:
  ChildsEnd() {
    machine.withEmbeddedBuilds();
    StartupManager::instance().launchKarnoWithCompletion([](bool, const std::optional<Error>&) {});
    machine.runFor(1);
    linesBefore_ = machine.log().size();
  }

  std::vector<Line> linesSince() {
    const std::vector<Line> lines = machine.log();
    return {lines.begin() + static_cast<std::ptrdiff_t>(linesBefore_), lines.end()};
  }

  FakePlatform machine;

 private:
  std::size_t linesBefore_ = 0;
};

TEST_F(ChildsEnd, QuitsTheLauncher) {
  machine.tasks.end(5001, 0, TerminationReason::Exit);
  machine.runFor(6);

  EXPECT_THAT(linesSince(),
              ElementsAre(Line("WARN", "Startup[TERMINATED] Child terminated (status:0, reason:1)"),
                          Line("WARN", "Startup[TERMINATED] Embedded Karno.app terminated - quitting"),
                          Line("INFO", "AppDelegate[TERMINATE] Reason: Embedded Karno.app terminated")));
  EXPECT_EQ(machine.application.terminations(), 1);
}

TEST_F(ChildsEnd, ByASignalQuitsTheLauncherJustTheSame) {
  machine.tasks.end(5001, 11, TerminationReason::UncaughtSignal);
  machine.runFor(6);

  EXPECT_THAT(linesSince(),
              ElementsAre(Line("WARN", "Startup[TERMINATED] Child terminated (status:11, reason:2)"),
                          Line("WARN", "Startup[TERMINATED] Embedded Karno.app terminated - quitting"),
                          Line("INFO", "AppDelegate[TERMINATE] Reason: Embedded Karno.app terminated")));
}

TEST_F(ChildsEnd, DuringARestartLeavesTheLauncherRunning) {
  StartupManager::instance().setRestartingEmbeddedKarnoApp(true);

  machine.tasks.end(5001, 3, TerminationReason::Exit);
  machine.runFor(6);

  EXPECT_THAT(
      linesSince(),
      ElementsAre(
          Line("WARN", "Startup[TERMINATED] Child terminated (status:3, reason:1)"),
          Line("WARN", "Startup[TERMINATED] Embedded Karno.app terminated. Reason: Being restarted")));
  EXPECT_EQ(machine.application.terminations(), 0);
}

TEST_F(ChildsEnd, DuringAnUpdateSessionLeavesTheLauncherRunning) {
  machine.updater.inSession = true;

  machine.tasks.end(5001, 15, TerminationReason::UncaughtSignal);
  machine.runFor(6);

  EXPECT_THAT(
      linesSince(),
      ElementsAre(Line("WARN", "Startup[TERMINATED] Child terminated (status:15, reason:2)"),
                  Line("WARN", "Startup[TERMINATED] Embedded Karno.app terminated. Reason: Being updated")));
  EXPECT_EQ(machine.application.terminations(), 0);
}

TEST_F(ChildsEnd, WhileTheUpdaterCannotCheckLeavesTheLauncherRunning) {
  machine.updater.canCheck = false;

  machine.tasks.end(5001);
  machine.runFor(6);

  EXPECT_EQ(linesSince().back(),
            Line("WARN", "Startup[TERMINATED] Embedded Karno.app terminated. Reason: Being updated"));
  EXPECT_EQ(machine.application.terminations(), 0);
}

TEST_F(ChildsEnd, DuringARestartAndAnUpdateCountsAsTheRestart) {
  StartupManager::instance().setRestartingEmbeddedKarnoApp(true);
  machine.updater.inSession = true;

  machine.tasks.end(5001);
  machine.runFor(6);

  EXPECT_EQ(linesSince().back(),
            Line("WARN", "Startup[TERMINATED] Embedded Karno.app terminated. Reason: Being restarted"));
}

TEST_F(ChildsEnd, IsJudgedOnAThreadOfThePlatforms) {
  machine.tasks.end(5001);
  machine.runUntilIdle();

  EXPECT_EQ(machine.consoleLog.entries().back().thread, "task termination");
}

TEST_F(ChildsEnd, IsJudgedAlsoWhileTheMainThreadIsHeldUp) {
  machine.tasks.end(5001);
  machine.dispatch.sleep(1);

  EXPECT_THAT(linesSince(),
              ElementsAre(Line("WARN", "Startup[TERMINATED] Child terminated (status:0, reason:1)"),
                          Line("WARN", "Startup[TERMINATED] Embedded Karno.app terminated - quitting"),
                          Line("INFO", "AppDelegate[TERMINATE] Reason: Embedded Karno.app terminated")));
}

TEST_F(ChildsEnd, KeepsTheProcessIdentifier) {
  machine.tasks.end(5001);
  machine.runFor(6);

  EXPECT_EQ(StartupManager::instance().embeddedKarnoProcessIdentifier(), 5001);
}

}  // namespace
}  // namespace karno
