#include "app/app_delegate.h"

#include <gmock/gmock.h>

#include <cerrno>

#include "elements_are.h"
#include "fake_platform.h"
#include "launcher.h"
#include "log/karno_log.h"
#include "printing.h"
#include "util/utilities.h"

namespace karno {
namespace {

using karno::test::ElementsAre;
using platform::Value;
using test::FakePlatform;
using test::Launcher;
using test::Line;
using ::testing::IsEmpty;
using ::testing::Pair;

const Line kBannerRule("STARTUP", "===================================================");
const Line kBannerVerbose("STARTUP", "Karno Log Started (defaults verboseLogging=0)");
const Line kBannerVersion("STARTUP", "Karno Version: 3.2.1");
const Line kBannerParent("STARTUP", "Parent Process: launchd (1)");

// The move manager's answers need one, and look at nothing in it.
KarnoMoveApplicationManager& mover() { return KarnoMoveApplicationManager::instance(); }

// On which thread the line was logged.
std::string threadOf(const FakePlatform& machine, const Line& line) {
  for (const auto& entry : machine.consoleLog.entries()) {
    if (Line::parse(entry.line) == line) return entry.thread;
  }
  return "not logged";
}

TEST(AppDelegateStart, StartsTheLogTheListenerAndTheMoveCheckAndReturns) {
  FakePlatform machine;
  Launcher launcher(machine);

  launcher.finishLaunching();

  EXPECT_THAT(machine.consoleMessages(),
              ElementsAre(kBannerRule, kBannerVerbose, kBannerVersion, kBannerParent,
                          Line("INFO", "AppDelegate[MOVE] Check whether app needs to be moved")));
  EXPECT_EQ(machine.notifications.observerCount(), 1U);
  EXPECT_EQ(machine.application.activations(), 1);
}

TEST(AppDelegateStart, ComesToTheFrontAfterTheLogAndTheListenerAndBeforeTheMoveCheck) {
  FakePlatform machine;
  std::vector<Line> linesThen;
  std::size_t observersThen = 0;
  machine.application.whenActivated = [&] {
    linesThen = machine.consoleMessages();
    observersThen = machine.notifications.observerCount();
  };
  Launcher launcher(machine);

  launcher.finishLaunching();

  EXPECT_THAT(linesThen, ElementsAre(kBannerRule, kBannerVerbose, kBannerVersion, kBannerParent));
  EXPECT_EQ(observersThen, 1U);
}

TEST(AppDelegateStart, BeginsToListenOnlyOnceTheLogHasStarted) {
  FakePlatform machine;
  std::size_t observersThen = 99;
  machine.whenLogged(kBannerParent, [&] { observersThen = machine.notifications.observerCount(); });
  Launcher launcher(machine);

  launcher.finishLaunching();

  EXPECT_EQ(observersThen, 0U);
  EXPECT_EQ(machine.notifications.observerCount(), 1U);
}

TEST(AppDelegateStart, ChecksForAMoveOnTheBackgroundQueue) {
  FakePlatform machine;
  machine.withEmbeddedBuilds();
  Launcher launcher(machine);

  launcher.finishLaunching();
  machine.runUntilIdle();

  EXPECT_EQ(threadOf(machine, Line("INFO", "AppDelegate[MOVE] Check whether app needs to be moved")), "main");
  EXPECT_EQ(
      threadOf(machine, Line("INFO", "AppDelegate[MOVE] Karno does not need to be moved. Continuing...")),
      "global(-32768)");
}

TEST(AppDelegateStart, StartsTheMainWindowOnTheMainThreadOnceNoMoveIsNeeded) {
  FakePlatform machine;
  machine.withEmbeddedBuilds();
  Launcher launcher(machine);

  launcher.finishLaunching();
  machine.runFor(1);

  const std::vector<Line> log = machine.log();
  ASSERT_GE(log.size(), 8U);
  EXPECT_THAT(std::vector<Line>(log.begin(), log.begin() + 8),
              ElementsAre(kBannerRule, kBannerVerbose, kBannerVersion, kBannerParent,
                          Line("INFO", "AppDelegate[MOVE] Check whether app needs to be moved"),
                          Line("INFO", "AppDelegate[MOVE] Karno does not need to be moved. Continuing..."),
                          Line("INFO", "EmbeddedApp[CONFIGURE] Use File Provider = Yes (first startup)"),
                          Line("INFO", "Startup[CHECK] Checking system for FileProvider...")));
  EXPECT_EQ(threadOf(machine, log[7]), "main");
}

TEST(AppDelegateStart, StartsTheMainWindowOnALaterTurnAlsoWhenTheAnswerComesOnTheMainThread) {
  FakePlatform machine;
  Launcher launcher(machine);

  launcher.delegate().moveApplicationNotNeeded(mover());
  const std::size_t observersAtReturn = machine.windows.prompt.observerCount();
  const auto submissionsAtReturn = machine.dispatch.mainSubmissions();
  machine.runUntilIdle();

  EXPECT_EQ(observersAtReturn, 0U);
  EXPECT_THAT(submissionsAtReturn, ElementsAre("main operation queue"));
  EXPECT_EQ(machine.windows.prompt.observerCount(), 1U);
}

TEST(AppDelegateStart, StartsTheMainWindowOnceTheMainDispatchQueueIsDoneWithItsBlock) {
  FakePlatform machine;
  Launcher launcher(machine);
  std::size_t observersWhileAtWork = 99;
  machine.dispatch.mainQueue().async([&] {
    launcher.delegate().moveApplicationNotNeeded(mover());
    machine.runFor(1);
    observersWhileAtWork = machine.windows.prompt.observerCount();
  });

  machine.runUntilIdle();

  EXPECT_EQ(observersWhileAtWork, 0U);
  EXPECT_EQ(machine.windows.prompt.observerCount(), 1U);
}

TEST(AppDelegateStart, DoesNotStartTheUpdater) {
  FakePlatform machine;
  Launcher launcher(machine);

  launcher.finishLaunching();

  EXPECT_EQ(threadOf(machine, Line("INFO", "Sparkle[START] Starting Up")), "not logged");
}

TEST(AppDelegateStart, OutlivesAMainWindowThatIsGone) {
  FakePlatform machine;
  const auto delegate = std::make_shared<AppDelegate>();

  delegate->moveApplicationNotNeeded(mover());
  machine.runUntilIdle();

  EXPECT_EQ(delegate->mainWindow(), nullptr);
  EXPECT_THAT(machine.consoleMessages(),
              ElementsAre(Line("INFO", "AppDelegate[MOVE] Karno does not need to be moved. Continuing...")));
}

TEST(AppDelegateMove, ThatIsCompleteQuits) {
  FakePlatform machine;
  Launcher launcher(machine);

  launcher.delegate().moveApplicationDidComplete(mover());
  machine.runFor(6);

  EXPECT_THAT(
      machine.log(),
      ElementsAre(Line("INFO", "AppDelegate[MOVE] Karno has been moved and will be restarted. Quitting."),
                  Line("INFO", "AppDelegate[TERMINATE] Reason: Karno was moved to /Applications"),
                  Line("INFO", "AppDelegate:: Terminating")));
  EXPECT_EQ(machine.application.terminations(), 1);
}

TEST(AppDelegateMove, ThatFailedQuitsWithTheErrorsLocalisedDescription) {
  FakePlatform machine;
  Launcher launcher(machine);

  launcher.delegate().moveApplicationDidFail(mover(), Utilities::errorWithPOSIXCode(14, "Could not copy"));
  machine.runFor(6);

  EXPECT_THAT(
      machine.log(),
      ElementsAre(Line("*** ERROR ***", "AppDelegate[MOVE] Failed to move Karno. Error=Could not copy"),
                  Line("INFO", "AppDelegate[TERMINATE] Reason: Karno failed to moved to /Applications"),
                  Line("INFO", "AppDelegate:: Terminating")));
  EXPECT_THAT(machine.alerts.shown(), IsEmpty());
}

TEST(AppDelegateMove, ThatTheUserCancelledQuits) {
  FakePlatform machine;
  Launcher launcher(machine);

  launcher.delegate().moveApplicationUserDidCancel(mover());
  machine.runFor(6);

  EXPECT_THAT(machine.log(),
              ElementsAre(Line("WARN", "AppDelegate[MOVE] User cancelled the move operation - quitting"),
                          Line("INFO", "AppDelegate[TERMINATE] Reason: user cancelled move to /Applications"),
                          Line("INFO", "AppDelegate:: Terminating")));
}

struct MoveAnswer {
  void (*tell)(AppDelegate&);
  Line answer;
  Line reason;
};

void PrintTo(const MoveAnswer& answer, std::ostream* out) { *out << answer.answer.message; }

class AppDelegateMoveThatQuits : public ::testing::TestWithParam<MoveAnswer> {};

TEST_P(AppDelegateMoveThatQuits, ResetsTheUpdaterAndSavesThatOnTheCallingThread) {
  FakePlatform machine;
  Launcher launcher(machine);

  machine.onThread([&] { GetParam().tell(launcher.delegate()); }, "caller");
  machine.runUntilIdle();

  EXPECT_THAT(machine.userDefaults.standard().writes, ElementsAre(Pair("SUHasLaunchedBefore", Value(false))));
  EXPECT_EQ(machine.userDefaults.standard().synchronisations, 1);
  EXPECT_EQ(machine.consoleLog.entries().back().thread, "caller");
}

TEST_P(AppDelegateMoveThatQuits, ResetsTheUpdaterAfterItsOwnLine) {
  FakePlatform machine;
  Launcher launcher(machine);
  std::size_t writesThen = 99;
  machine.whenLogged(GetParam().answer, [&] { writesThen = machine.userDefaults.standard().writes.size(); });

  GetParam().tell(launcher.delegate());

  EXPECT_EQ(writesThen, 0U);
}

TEST_P(AppDelegateMoveThatQuits, HasSavedTheResetBeforeItAsksForTheEnd) {
  FakePlatform machine;
  Launcher launcher(machine);
  int savesThen = -1;
  machine.whenLogged(GetParam().reason,
                     [&] { savesThen = machine.userDefaults.standard().synchronisations; });

  GetParam().tell(launcher.delegate());

  EXPECT_EQ(savesThen, 1);
}

INSTANTIATE_TEST_SUITE_P(
    Answers, AppDelegateMoveThatQuits,
    ::testing::Values(
        MoveAnswer{[](AppDelegate& delegate) { delegate.moveApplicationDidComplete(mover()); },
                   Line("INFO", "AppDelegate[MOVE] Karno has been moved and will be restarted. Quitting."),
                   Line("INFO", "AppDelegate[TERMINATE] Reason: Karno was moved to /Applications")},
        MoveAnswer{[](AppDelegate& delegate) {
                     delegate.moveApplicationDidFail(mover(), Utilities::errorWithPOSIXCode(22, "x"));
                   },
                   Line("*** ERROR ***", "AppDelegate[MOVE] Failed to move Karno. Error=x"),
                   Line("INFO", "AppDelegate[TERMINATE] Reason: Karno failed to moved to /Applications")},
        MoveAnswer{[](AppDelegate& delegate) { delegate.moveApplicationUserDidCancel(mover()); },
                   Line("WARN", "AppDelegate[MOVE] User cancelled the move operation - quitting"),
                   Line("INFO", "AppDelegate[TERMINATE] Reason: user cancelled move to /Applications")}));

TEST(AppDelegateMove, ThatIsNotNeededLeavesTheUpdaterAlone) {
  FakePlatform machine;
  Launcher launcher(machine);

  launcher.delegate().moveApplicationNotNeeded(mover());

  EXPECT_THAT(machine.userDefaults.standard().writes, IsEmpty());
}

TEST(TerminateWithReason, LogsTheReasonAndTerminatesOnceTheLogIsWritten) {
  FakePlatform machine;
  std::vector<Line> logAtTheEnd;
  KarnoLog::manager().logInfo("before");

  AppDelegate::terminateWithReason("App should terminate");
  const bool ended = machine.runUntil([&] { return machine.application.terminations() > 0; }, 10);
  logAtTheEnd = machine.log();

  EXPECT_TRUE(ended);
  EXPECT_EQ(machine.application.terminatedAtSeconds(), 1.0);
  EXPECT_THAT(logAtTheEnd, ElementsAre(Line("INFO", "before"),
                                       Line("INFO", "AppDelegate[TERMINATE] Reason: App should terminate")));
}

TEST(TerminateWithReason, ReturnsAtOnceOnAnyThreadAndTerminatesOnTheMainOne) {
  FakePlatform machine;
  double returnedAt = -1;
  int terminationsAtReturn = -1;

  machine.onThread([&] {
    AppDelegate::terminateWithReason("from a thread");
    returnedAt = machine.seconds();
    terminationsAtReturn = machine.application.terminations();
  });
  machine.runFor(6);

  EXPECT_EQ(returnedAt, 0);
  EXPECT_EQ(terminationsAtReturn, 0);
  EXPECT_EQ(machine.application.terminations(), 1);
}

TEST(TerminateWithReason, TerminatesThroughTheMainOperationQueue) {
  FakePlatform machine;

  AppDelegate::terminateWithReason("by that queue");
  machine.runFor(6);

  EXPECT_THAT(machine.dispatch.mainSubmissions(), ElementsAre("main operation queue"));
}

TEST(TerminateWithReason, TerminatesAfterFiveSecondsThoughTheLogIsNeverEmpty) {
  FakePlatform machine;
  static_cast<void>(KarnoLog::manager());
  machine.onThread([&] {
    machine.dispatch.sleep(0.04);
    for (;;) {
      KarnoLog::manager().logInfo("busy");
      machine.dispatch.sleep(1);
    }
  });
  machine.runFor(0.05);

  AppDelegate::terminateWithReason("no end");
  machine.runFor(10);

  EXPECT_EQ(machine.application.terminations(), 1);
  EXPECT_EQ(machine.application.terminatedAtSeconds(), 5.05);
}

TEST(TerminateWithReason, TerminatesOnceAnAlertOfTheMainDispatchQueueIsAnswered) {
  FakePlatform machine;
  int terminationsWhileUp = -1;
  machine.alerts.answerNext(1000, [&] {
    AppDelegate::terminateWithReason("under an alert");
    machine.runFor(6);
    terminationsWhileUp = machine.application.terminations();
  });

  machine.dispatch.mainQueue().async([&] { machine.alerts.runModal({}); });
  machine.runUntilIdle();

  EXPECT_EQ(terminationsWhileUp, 0);
  EXPECT_EQ(machine.application.terminations(), 1);
}

TEST(TerminateWithReason, TerminatesThoughTheLogFolderCouldNotBeMade) {
  FakePlatform machine;
  machine.files.failCreateDirectory(test::kLogFolder, EROFS);
  Launcher launcher(machine);

  AppDelegate::terminateWithReason("read-only disk");
  machine.runFor(6);

  EXPECT_EQ(machine.application.terminations(), 1);
  EXPECT_THAT(machine.consoleMessages(),
              ElementsAre(Line("INFO", "AppDelegate[TERMINATE] Reason: read-only disk"),
                          Line("INFO", "AppDelegate:: Terminating")));
}

TEST(TerminateWithReason, TerminatesThoughTheLogFileCannotBeOpened) {
  FakePlatform machine;
  machine.files.failOpenForAppending(test::kLogFile);

  AppDelegate::terminateWithReason("no file");
  machine.runFor(6);

  EXPECT_EQ(machine.application.terminations(), 1);
}

TEST(TerminateWithReason, CalledTwiceWritesTwoReasonsAndTerminatesTwice) {
  FakePlatform machine;

  AppDelegate::terminateWithReason("first");
  AppDelegate::terminateWithReason("second");
  machine.runFor(11);

  EXPECT_THAT(machine.log(), ElementsAre(Line("INFO", "AppDelegate[TERMINATE] Reason: first"),
                                         Line("INFO", "AppDelegate[TERMINATE] Reason: second")));
  EXPECT_EQ(machine.application.terminations(), 2);
}

TEST(AppDelegateEnd, StillListensWhenItSaysSo) {
  FakePlatform machine;
  Launcher launcher(machine);
  launcher.finishLaunching();
  std::size_t observersThen = 99;
  machine.whenLogged(Line("INFO", "AppDelegate:: Terminating"),
                     [&] { observersThen = machine.notifications.observerCount(); });

  launcher.delegate().applicationWillTerminate();

  EXPECT_EQ(observersThen, 1U);
}

TEST(AppDelegateEnd, LogsAndStopsListeningAndDoesNothingElse) {
  FakePlatform machine;
  machine.withEmbeddedBuilds();
  Launcher launcher(machine);
  launcher.finishLaunching();
  machine.runFor(1);

  launcher.delegate().applicationWillTerminate();

  EXPECT_EQ(machine.consoleMessages().back(), Line("INFO", "AppDelegate:: Terminating"));
  EXPECT_EQ(machine.notifications.observerCount(), 0U);
  EXPECT_THAT(machine.tasks.running(), ElementsAre(5001));
  EXPECT_EQ(machine.application.terminations(), 0);
}

}  // namespace
}  // namespace karno
