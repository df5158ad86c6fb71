#include <gmock/gmock.h>

#include "app/startup_manager.h"
#include "elements_are.h"
#include "fake_platform.h"
#include "launcher.h"
#include "printing.h"

namespace karno {
namespace {

using karno::test::ElementsAre;
using test::FakePlatform;
using test::Line;
using test::StartupRecorder;
using ::testing::Contains;
using ::testing::IsEmpty;

constexpr const char* kFuseStrings = R"({"MESSAGE_FUSE_INSTALL_REQUIRED": "macFUSE is needed.",
  "MESSAGE_FUSE_INSTALL": "Install it.", "MESSAGE_FUSE_INSTALL_CONTINUE": "Have you installed it?",
  "OK": "Fine", "CONTINUE": "Go on", "CANCEL": "Stop"})";

const platform::Alert kInstallAlert{.style = platform::AlertStyle::Critical,
                                    .messageText = "macFUSE is needed.",
                                    .informativeText = "Install it.",
                                    .buttons = {{.title = "Fine", .keyEquivalent = ""}}};

const platform::Alert kContinueAlert{
    .style = platform::AlertStyle::Critical,
    .messageText = "macFUSE is needed.",
    .informativeText = "Have you installed it?",
    .buttons = {{.title = "Go on", .keyEquivalent = ""}, {.title = "Stop", .keyEquivalent = "\033"}}};

StartupManager& startup() { return StartupManager::instance(); }

std::shared_ptr<StartupRecorder> recordCallsOf(FakePlatform& machine) {
  machine.withFirstStartup(false).withStrings(kFuseStrings).withSystem("14.5", "arm64");
  const auto delegate = std::make_shared<StartupRecorder>(machine);
  startup().setDelegate(delegate);
  return delegate;
}

TEST(FuseDownload, OpensTheWebSiteOnAGlobalQueue) {
  FakePlatform machine;
  const auto delegate = recordCallsOf(machine);

  startup().fuseNeedsInstalling();
  EXPECT_THAT(machine.workspace.opened, IsEmpty());
  machine.runUntilIdle();

  EXPECT_THAT(machine.workspace.opened,
              ElementsAre(test::FakeWorkspace::Opened{"https://macfuse.github.io", "global(0)"}));
  EXPECT_THAT(
      machine.consoleMessages(),
      ElementsAre(Line("INFO", "Startup[FUSE] Showing macFuse website and asking user to install Fuse")));
}

TEST(FuseDownload, HasOpenedTheWebSiteWhenItSaysSo) {
  FakePlatform machine;
  const auto delegate = recordCallsOf(machine);
  std::size_t openedThen = 99;
  machine.whenLogged(Line("INFO", "Startup[FUSE] Showing macFuse website and asking user to install Fuse"),
                     [&] { openedThen = machine.workspace.opened.size(); });

  startup().informUserToDownloadFuse();

  EXPECT_EQ(openedThen, 1U);
}

TEST(FuseDownload, TakesTheWebSiteFromTheBundle) {
  FakePlatform machine;
  const auto delegate = recordCallsOf(machine);
  machine.bundles.main().info.insert_or_assign("KarnoMacFUSESite", "fuse.example.org");

  startup().informUserToDownloadFuse();

  EXPECT_EQ(machine.workspace.opened.at(0).url, "https://fuse.example.org");
}

TEST(FuseDownload, AnEmptyWebSiteInTheBundleIsThePublicOne) {
  FakePlatform machine;
  const auto delegate = recordCallsOf(machine);
  machine.bundles.main().info.insert_or_assign("KarnoMacFUSESite", "");

  startup().informUserToDownloadFuse();

  EXPECT_EQ(machine.workspace.opened.at(0).url, "https://macfuse.github.io");
}

TEST(FuseDownload, ShowsTheAlertTwoSecondsLater) {
  FakePlatform machine;
  const auto delegate = recordCallsOf(machine);

  startup().informUserToDownloadFuse();
  machine.runFor(1.999);
  EXPECT_THAT(machine.alerts.shown(), IsEmpty());
  machine.runFor(0.001);

  EXPECT_THAT(machine.alerts.shown(), ElementsAre(kInstallAlert));
  EXPECT_THAT(
      machine.consoleMessages(),
      ElementsAre(Line("INFO", "Startup[FUSE] Showing macFuse website and asking user to install Fuse"),
                  Line("INFO", "Startup[FUSE] Waiting for Fuse to install")));
}

TEST(FuseDownload, ShowsTheAlertWhenItIsItsTurnOnTheMainDispatchQueue) {
  FakePlatform machine;
  const auto delegate = recordCallsOf(machine);
  std::size_t shownBeforeItsTurn = 99;
  machine.dispatch.mainQueue().async([&] {
    startup().informUserToDownloadFuse();
    machine.runFor(3);
    shownBeforeItsTurn = machine.alerts.shown().size();
  });

  machine.runUntilIdle();

  EXPECT_EQ(shownBeforeItsTurn, 0U);
  EXPECT_THAT(machine.alerts.shown(), ElementsAre(kInstallAlert));
}

TEST(FuseDownload, WaitsWhileTheAlertIsStillUp) {
  FakePlatform machine;
  const auto delegate = recordCallsOf(machine);
  std::vector<std::string> callsWhileUp;
  machine.alerts.answerNext(1000, [&] {
    machine.withFuse("4.4.1");
    machine.runFor(10);
    callsWhileUp = delegate->calls;
  });

  startup().informUserToDownloadFuse();
  machine.runFor(3);

  EXPECT_THAT(callsWhileUp, ElementsAre("checked on it.vantul.KarnoWrapper.download-wait"));
}

TEST(FuseDownload, AnyAnswerToTheAlertIsIgnored) {
  FakePlatform machine;
  const auto delegate = recordCallsOf(machine);
  machine.alerts.answerNext(1001);

  startup().informUserToDownloadFuse();
  machine.runFor(60);

  EXPECT_THAT(delegate->calls, IsEmpty());
  EXPECT_EQ(machine.application.terminations(), 0);
}

TEST(FuseDownload, PollsForTheFirstTimeTwoSecondsAfterTheWaitBegan) {
  FakePlatform machine;
  const auto delegate = recordCallsOf(machine);
  machine.withFuse("4.4.1");

  startup().informUserToDownloadFuse();
  machine.runFor(3.999);
  EXPECT_THAT(delegate->calls, IsEmpty());
  machine.runFor(0.001);

  EXPECT_THAT(delegate->calls, ElementsAre("checked on it.vantul.KarnoWrapper.download-wait"));
}

TEST(FuseDownload, PollsQuietlyEveryTwoSecondsUntilMacFUSEIsGood) {
  FakePlatform machine;
  const auto delegate = recordCallsOf(machine);

  startup().informUserToDownloadFuse();
  machine.runFor(3600.5);
  machine.withFuse("4.0.4");
  machine.runFor(2);
  machine.withFuse("4.4.1");
  machine.runFor(2);

  EXPECT_THAT(
      machine.consoleMessages(),
      ElementsAre(Line("INFO", "Startup[FUSE] Showing macFuse website and asking user to install Fuse"),
                  Line("INFO", "Startup[FUSE] Waiting for Fuse to install"),
                  Line("WARN", "FuseRequirements: System requirements not met"),
                  Line("INFO", "FuseRequirements: System requirements have been met"),
                  Line("INFO", "Startup[FUSE] Fuse is installed")));
  EXPECT_THAT(delegate->calls, ElementsAre("checked on it.vantul.KarnoWrapper.download-wait"));
}

TEST(FuseDownload, StopsPollingOnceMacFUSEIsThere) {
  FakePlatform machine;
  const auto delegate = recordCallsOf(machine);
  machine.withFuse("4.4.1");

  startup().informUserToDownloadFuse();
  machine.runFor(100);

  EXPECT_EQ(delegate->calls.size(), 1U);
  EXPECT_EQ(machine.consoleMessages().back(), Line("INFO", "Startup[FUSE] Fuse is installed"));
}

TEST(FuseDownload, DoesNotLookAtACancel) {
  FakePlatform machine;
  const auto delegate = recordCallsOf(machine);
  startup().setCancelled(true);

  startup().informUserToDownloadFuse();
  machine.runFor(60);
  EXPECT_THAT(delegate->calls, IsEmpty());
  machine.withFuse("4.4.1");
  machine.runFor(2);

  EXPECT_THAT(delegate->calls, ElementsAre("checked on it.vantul.KarnoWrapper.download-wait"));
}

// Four hours, which are more than seven thousand looks.
TEST(FuseDownload, NeverGivesUp) {
  FakePlatform machine;
  const auto delegate = recordCallsOf(machine);

  startup().informUserToDownloadFuse();
  machine.runFor(4.0 * 3600);
  EXPECT_THAT(delegate->calls, IsEmpty());
  machine.withFuse("4.4.1");
  machine.runFor(2);

  EXPECT_THAT(delegate->calls, ElementsAre("checked on it.vantul.KarnoWrapper.download-wait"));
}

TEST(FuseDownload, HasAQueueToWaitOnBeforeItOpensTheWebSite) {
  FakePlatform machine;
  const auto delegate = recordCallsOf(machine);
  std::vector<std::string> queuesThen;
  machine.workspace.whenOpened = [&] { queuesThen = machine.dispatch.serialQueues(); };

  startup().informUserToDownloadFuse();

  EXPECT_THAT(queuesThen, Contains("it.vantul.KarnoWrapper.download-wait"));
}

TEST(FuseDownload, ShowsTheAlertThroughTheMainDispatchQueue) {
  FakePlatform machine;
  const auto delegate = recordCallsOf(machine);

  startup().informUserToDownloadFuse();
  machine.runFor(3);

  EXPECT_THAT(machine.dispatch.mainSubmissions(), ElementsAre("main queue"));
}

TEST(FuseDownload, UsesOneQueueForEveryWait) {
  FakePlatform machine;
  const auto delegate = recordCallsOf(machine);

  startup().informUserToDownloadFuse();
  startup().informUserToDownloadFuse();
  machine.runFor(10);

  EXPECT_EQ(std::ranges::count(machine.dispatch.serialQueues(), "it.vantul.KarnoWrapper.download-wait"), 1);
  EXPECT_EQ(machine.alerts.shown().size(), 1U);
}

TEST(ManualInstall, AsksAfterTwoSeconds) {
  FakePlatform machine;
  const auto delegate = recordCallsOf(machine);
  machine.alerts.answerNext(1002);

  startup().continueAfterManualInstall();
  machine.runFor(1.999);
  EXPECT_THAT(machine.alerts.shown(), IsEmpty());
  machine.runFor(0.001);

  EXPECT_THAT(machine.alerts.shown(), ElementsAre(kContinueAlert));
  EXPECT_EQ(std::ranges::count(machine.dispatch.serialQueues(), "it.vantul.KarnoWrapper.fuse.install.wait"),
            1);
}

TEST(ManualInstall, AsksWhenItIsItsTurnOnTheMainDispatchQueue) {
  FakePlatform machine;
  const auto delegate = recordCallsOf(machine);
  machine.alerts.answerNext(1002);
  std::size_t shownBeforeItsTurn = 99;
  machine.dispatch.mainQueue().async([&] {
    startup().continueAfterManualInstall();
    machine.runFor(3);
    shownBeforeItsTurn = machine.alerts.shown().size();
  });

  machine.runUntilIdle();

  EXPECT_EQ(shownBeforeItsTurn, 0U);
  EXPECT_THAT(machine.alerts.shown(), ElementsAre(kContinueAlert));
}

TEST(ManualInstall, AsksThroughTheMainDispatchQueue) {
  FakePlatform machine;
  const auto delegate = recordCallsOf(machine);
  machine.alerts.answerNext(1002);

  startup().continueAfterManualInstall();
  machine.runFor(3);

  EXPECT_THAT(machine.dispatch.mainSubmissions(), ElementsAre("main queue"));
}

class AnswerOfNoButton : public ::testing::TestWithParam<long> {};

TEST_P(AnswerOfNoButton, DoesNothing) {
  FakePlatform machine;
  const auto delegate = recordCallsOf(machine);
  machine.alerts.answerNext(GetParam());

  startup().continueAfterManualInstall();
  machine.runFor(60);

  EXPECT_THAT(delegate->calls, IsEmpty());
  EXPECT_THAT(machine.console(), IsEmpty());
}

// A modal loop that something else ends answers with 0 or with a number from -1000 down.
INSTANTIATE_TEST_SUITE_P(ManualInstall, AnswerOfNoButton, ::testing::Values(0, 1, -1000, -1001, 999, 1002));

TEST(ManualInstall, CancelEndsTheSetup) {
  FakePlatform machine;
  const auto delegate = recordCallsOf(machine);
  machine.alerts.answerNext(1001);

  startup().continueAfterManualInstall();
  machine.runFor(3);

  EXPECT_THAT(delegate->calls, ElementsAre("setup failed on main"));
  EXPECT_THAT(machine.console(), IsEmpty());
}

TEST(ManualInstall, ContinueChecksTheSystemAgain) {
  FakePlatform machine;
  const auto delegate = recordCallsOf(machine);
  machine.withFuse("4.4.1");
  machine.alerts.answerNext(1000);

  startup().continueAfterManualInstall();
  machine.runFor(3);

  EXPECT_EQ(machine.consoleMessages().at(0),
            Line("INFO", "Startup[FUSE] User has continued after installing Fuse"));
  EXPECT_THAT(delegate->calls, ElementsAre("checked on global(0)"));
}

TEST(ProgressCancel, ClosesTheWindowOnTheMainThreadAndEndsTheSetup) {
  FakePlatform machine;
  const auto delegate = recordCallsOf(machine);
  const auto controller = ProgressWindowController::make();
  controller->setDelegate(startup().weak_from_this());
  startup().setProgressController(controller);
  controller->showWindow();
  EXPECT_FALSE(startup().cancelled());

  machine.windows.progress.at(0)->cancelButton.press();

  EXPECT_TRUE(startup().cancelled());
  EXPECT_THAT(delegate->calls, ElementsAre("setup failed on main"));
  EXPECT_EQ(startup().progressController(), controller);
  EXPECT_THAT(machine.consoleMessages(),
              ElementsAre(Line("WARN", "Startup[FUSE] User decided not to install fuse")));
  machine.runUntilIdle();
  EXPECT_EQ(startup().progressController(), nullptr);
  EXPECT_THAT(machine.windows.progress.at(0)->calls,
              ElementsAre("show", "min 0", "max 100", "value 0", "close", "stop"));
}

TEST(ProgressCancel, IsNotedAndTheWindowOnItsWayOutBeforeAnybodyHears) {
  FakePlatform machine;
  const auto delegate = recordCallsOf(machine);
  const auto controller = ProgressWindowController::make();
  startup().setProgressController(controller);
  std::vector<bool> cancelledThen;
  std::vector<std::shared_ptr<ProgressWindowController>> controllerOnTheNextTurn;
  const auto look = [&] {
    cancelledThen.push_back(startup().cancelled());
    machine.dispatch.mainQueue().async(
        [&] { controllerOnTheNextTurn.push_back(startup().progressController()); });
  };
  machine.whenLogged(Line("WARN", "Startup[FUSE] User decided not to install fuse"), look);
  delegate->whenTold = look;

  startup().progressWindowControllerUserPressedCancel(*controller);
  machine.runUntilIdle();

  EXPECT_THAT(cancelledThen, ElementsAre(true, true));
  EXPECT_THAT(controllerOnTheNextTurn, testing::ElementsAre(nullptr, nullptr));
}

TEST(ProgressCancel, IsLoggedBeforeTheDelegateHears) {
  FakePlatform machine;
  const auto delegate = recordCallsOf(machine);
  const auto controller = ProgressWindowController::make();
  std::size_t callsThen = 99;
  machine.whenLogged(Line("WARN", "Startup[FUSE] User decided not to install fuse"),
                     [&] { callsThen = delegate->calls.size(); });

  startup().progressWindowControllerUserPressedCancel(*controller);

  EXPECT_EQ(callsThen, 0U);
}

TEST(HideProgress, WaitsForItsTurnOnTheMainDispatchQueue) {
  FakePlatform machine;
  const auto controller = ProgressWindowController::make();
  startup().setProgressController(controller);
  std::shared_ptr<ProgressWindowController> beforeItsTurn;
  machine.dispatch.mainQueue().async([&] {
    startup().hideProgress();
    machine.runFor(1);
    beforeItsTurn = startup().progressController();
  });

  machine.runUntilIdle();

  EXPECT_EQ(beforeItsTurn, controller);
  EXPECT_EQ(startup().progressController(), nullptr);
}

TEST(HideProgress, GoesThroughTheMainDispatchQueue) {
  FakePlatform machine;

  startup().hideProgress();

  EXPECT_THAT(machine.dispatch.mainSubmissions(), ElementsAre("main queue"));
}

TEST(HideProgress, ForgetsTheWindowOnlyAfterItsClosing) {
  FakePlatform machine;
  const auto controller = ProgressWindowController::make();
  startup().setProgressController(controller);
  std::shared_ptr<ProgressWindowController> duringTheClosing;
  machine.windows.progress.at(0)->whenClosed = [&] { duringTheClosing = startup().progressController(); };

  startup().hideProgress();
  machine.runUntilIdle();

  EXPECT_EQ(duringTheClosing, controller);
}

TEST(HideProgress, HopsToTheMainThread) {
  FakePlatform machine;
  startup().setProgressController(ProgressWindowController::make());

  machine.onThread([] { startup().hideProgress(); });
  machine.runUntilIdle();

  EXPECT_EQ(startup().progressController(), nullptr);
  EXPECT_THAT(machine.windows.progress.at(0)->calls, ElementsAre("close", "stop"));
}

TEST(HideProgress, WithoutAWindowDoesNothing) {
  FakePlatform machine;

  startup().hideProgress();
  machine.runUntilIdle();

  EXPECT_EQ(startup().progressController(), nullptr);
  EXPECT_THAT(machine.console(), IsEmpty());
}

}  // namespace
}  // namespace karno
