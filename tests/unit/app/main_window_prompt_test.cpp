#include <gmock/gmock.h>

#include "app/main_window.h"
#include "app/startup_manager.h"
#include "elements_are.h"
#include "fake_platform.h"
#include "launcher.h"

namespace karno {
namespace {

using karno::test::ElementsAre;
using platform::Value;
using test::FakePlatform;
using test::Line;
using ::testing::Contains;
using ::testing::IsEmpty;
using ::testing::Not;
using ::testing::Pair;

constexpr const char* kStrings = R"({"CONTINUE": "Go on", "CANCEL": "Stop",
  "MESSAGE_FUSE_INSTALL_CONTINUE_TO_SITE": "Opens the web site.", "MESSAGE_FUSE_UPGRADE_REQUIRED": "macFUSE is old.",
  "MESSAGE_FUSE_INSTALL_REQUIRED": "macFUSE is needed.", "MESSAGE_FUSE_INSTALL": "Install it.",
  "DRIVE_MOUNT_FAILED": "No drive.", "OK": "Fine"})";

StartupManager& manager() { return StartupManager::instance(); }

std::shared_ptr<MainWindow> makeWindow(FakePlatform& machine) {
  machine.withStrings(kStrings);
  return std::make_shared<MainWindow>(machine.windows.prompt);
}

std::vector<std::string> textsOf(const MainWindow& window) {
  return {window.fuseMessage().stringValue(), window.continueMessage().stringValue(),
          window.continueButton().title(), window.cancelButton().title()};
}

TEST(InstallPrompt, IsFilledForAFirstInstallation) {
  FakePlatform machine;
  const auto window = makeWindow(machine);

  window->showInstallFuseWindowWithUpgrading(false);

  EXPECT_THAT(textsOf(*window), ElementsAre("macFUSE is needed.", "Opens the web site.", "Go on", "Stop"));
}

TEST(InstallPrompt, IsFilledForAnUpgrade) {
  FakePlatform machine;
  const auto window = makeWindow(machine);

  window->showInstallFuseWindowWithUpgrading(true);

  EXPECT_THAT(textsOf(*window), ElementsAre("macFUSE is old.", "Opens the web site.", "Go on", "Stop"));
}

TEST(InstallPrompt, IsFilledAndObservedBeforeItComesInFront) {
  FakePlatform machine;
  const auto window = makeWindow(machine);
  std::vector<std::string> texts;
  std::size_t observers = 0;
  machine.windows.prompt.whenShown = [&] {
    texts = textsOf(*window);
    observers = machine.windows.prompt.observerCount();
  };

  window->showInstallFuseWindowWithUpgrading(true);

  EXPECT_THAT(texts, ElementsAre("macFUSE is old.", "Opens the web site.", "Go on", "Stop"));
  EXPECT_EQ(observers, 1U);
}

TEST(InstallPrompt, ComesInFrontBeforeTheApplicationIsActivated) {
  FakePlatform machine;
  const auto window = makeWindow(machine);
  bool wasInFront = false;
  machine.application.whenActivated = [&] { wasInFront = machine.windows.prompt.isInFront(); };

  window->showInstallFuseWindowWithUpgrading(false);

  EXPECT_TRUE(wasInFront);
  EXPECT_EQ(machine.application.activations(), 1);
}

TEST(InstallPrompt, ShownTwiceIsObservedOnce) {
  FakePlatform machine;
  const auto window = makeWindow(machine);
  window->registerNotifications();

  window->showInstallFuseWindowWithUpgrading(false);
  window->showInstallFuseWindowWithUpgrading(true);

  EXPECT_EQ(machine.windows.prompt.observerCount(), 1U);
  EXPECT_EQ(machine.windows.prompt.timesShown(), 2);
}

TEST(InstallPrompt, IsShownLaterThroughTheMainOperationQueue) {
  FakePlatform machine;
  const auto window = makeWindow(machine);

  machine.onThread([&] { window->startUpNeedsToInstallFuse(manager(), true); });
  machine.runUntilIdle();

  EXPECT_THAT(machine.dispatch.mainSubmissions(), ElementsAre("main operation queue"));
  EXPECT_THAT(machine.consoleMessages(), ElementsAre(Line("INFO", "Main: Need to install Fuse")));
  EXPECT_EQ(window->fuseMessage().stringValue(), "macFUSE is old.");
  EXPECT_TRUE(machine.windows.prompt.isInFront());
}

TEST(InstallPrompt, IsNotShownInsideTheCallback) {
  FakePlatform machine;
  const auto window = makeWindow(machine);

  window->startUpNeedsToInstallFuse(manager(), false);

  EXPECT_FALSE(machine.windows.prompt.isInFront());
  EXPECT_THAT(machine.alerts.shown(), IsEmpty());
}

TEST(InstallPrompt, ComesUpOnlyAfterAnAlertThatIsOpen) {
  FakePlatform machine;
  const auto window = makeWindow(machine);
  bool cameUp = true;
  machine.alerts.answerNext(1000, [&] {
    window->startUpNeedsToInstallFuse(manager(), false);
    machine.runUntilIdle();
    cameUp = machine.windows.prompt.isInFront();
  });

  machine.dispatch.mainQueue().async([&] { machine.alerts.runModal({}); });
  machine.runUntilIdle();

  EXPECT_FALSE(cameUp);
  EXPECT_TRUE(machine.windows.prompt.isInFront());
}

TEST(ContinueButton, ClosesTheWindowAndBeginsTheDownload) {
  FakePlatform machine;
  const auto window = makeWindow(machine);
  window->showInstallFuseWindowWithUpgrading(false);

  window->continueToInstallFusePressed();

  EXPECT_FALSE(machine.windows.prompt.isInFront());
  EXPECT_EQ(machine.windows.prompt.observerCount(), 0U);
  EXPECT_THAT(machine.workspace.opened, IsEmpty());
  machine.runUntilIdle();
  EXPECT_THAT(
      machine.consoleMessages(),
      ElementsAre(Line("INFO", "Main: User pressed continue to install Fuse"),
                  Line("INFO", "Startup[FUSE] Showing macFuse website and asking user to install Fuse")));
  EXPECT_EQ(machine.workspace.opened.size(), 1U);
}

TEST(ContinueButton, HasClosedTheWindowBeforeTheDownloadIsAskedFor) {
  FakePlatform machine;
  const auto window = makeWindow(machine);
  std::vector<std::string> submissionsAtTheClosing = {"never closed"};
  machine.windows.prompt.addWillCloseObserver(
      [&] { submissionsAtTheClosing = machine.dispatch.submissions(); });

  window->continueToInstallFusePressed();

  EXPECT_THAT(submissionsAtTheClosing, Not(Contains("global(0)")));
  EXPECT_THAT(submissionsAtTheClosing, Not(Contains("never closed")));
  EXPECT_THAT(machine.dispatch.submissions(), Contains("global(0)"));
}

TEST(CancelButton, ClosesTheWindowResetsTheUpdaterAndQuits) {
  FakePlatform machine;
  const auto window = makeWindow(machine);
  window->showInstallFuseWindowWithUpgrading(false);

  window->cancelInstallFusePressed();
  EXPECT_THAT(machine.userDefaults.standard().writes, ElementsAre(Pair("SUHasLaunchedBefore", Value(false))));
  machine.runFor(6);

  EXPECT_FALSE(machine.windows.prompt.isInFront());
  EXPECT_THAT(machine.log(),
              ElementsAre(Line("INFO", "Main: User pressed cancel - not installing Fuse"),
                          Line("INFO", "AppDelegate[TERMINATE] Reason: User cancelled install of Fuse")));
  EXPECT_THAT(machine.alerts.shown(), IsEmpty());
  EXPECT_EQ(machine.application.terminations(), 1);
}

TEST(CancelButton, ResetsTheUpdaterBetweenTheClosingAndTheEnd) {
  FakePlatform machine;
  const auto window = makeWindow(machine);
  window->showInstallFuseWindowWithUpgrading(false);
  std::vector<Line> lines;
  int closes = 0;
  machine.userDefaults.standard().whenWritten = [&] {
    lines = machine.consoleMessages();
    closes = machine.windows.prompt.closes();
  };

  window->cancelInstallFusePressed();

  EXPECT_THAT(lines, ElementsAre(Line("INFO", "Main: User pressed cancel - not installing Fuse")));
  EXPECT_EQ(closes, 1);
}

TEST(InstallPromptClosedByTheUser, NeitherQuitsNorAnswers) {
  FakePlatform machine;
  const auto window = makeWindow(machine);
  window->showInstallFuseWindowWithUpgrading(false);

  machine.windows.prompt.close();
  machine.runFor(600);

  EXPECT_EQ(machine.windows.prompt.observerCount(), 0U);
  EXPECT_EQ(machine.application.terminations(), 0);
  EXPECT_THAT(machine.workspace.opened, IsEmpty());
  EXPECT_THAT(machine.console(), IsEmpty());
}

TEST(ProgressWindowCancel, EndsInTheLaunchFailureAlert) {
  FakePlatform machine;
  const auto window = makeWindow(machine);
  manager().setDelegate(window);
  const auto controller = ProgressWindowController::make();
  controller->setDelegate(manager().weak_from_this());

  controller->cancelButtonClicked();
  machine.runFor(6);

  EXPECT_EQ(machine.alerts.shown().at(0).informativeText, "No drive.");
  EXPECT_THAT(machine.log(),
              ElementsAre(Line("WARN", "Startup[FUSE] User decided not to install fuse"),
                          Line("*** ERROR ***", "Main: Failed to setup system"),
                          Line("*** ERROR ***", "Main: Failed to start Karno"),
                          Line("INFO", "AppDelegate[TERMINATE] Reason: Failed to start Karno.app")));
}

// From the entry of the launcher to the launch, with macFUSE appearing in between.
TEST(WholeInstallation, LeadsFromThePromptToTheLaunch) {
  FakePlatform machine;
  machine.withStrings(kStrings).withFirstStartup(false).withEmbeddedBuilds().withSystem("14.5", "arm64");
  test::Launcher launcher(machine);

  launcher.finishLaunching();
  machine.runFor(1);
  machine.windows.prompt.continueButton().press();
  machine.runFor(100);
  EXPECT_THAT(machine.tasks.launches(), IsEmpty());
  machine.withFuse("4.4.1");
  machine.runFor(2);

  EXPECT_EQ(machine.tasks.launches().at(0).executablePath,
            "/Applications/Karno.app/Contents/Helpers/Karno(Fuse).app/Contents/MacOS/Karno(Fuse)");
  EXPECT_FALSE(machine.windows.prompt.isInFront());
  EXPECT_EQ(machine.application.terminations(), 0);
}

TEST(WholeInstallation, EndsWithTheCancelButton) {
  FakePlatform machine;
  machine.withStrings(kStrings).withFirstStartup(false).withEmbeddedBuilds().withSystem("14.5", "arm64");
  test::Launcher launcher(machine);

  launcher.finishLaunching();
  machine.runFor(1);
  machine.windows.prompt.cancelButton().press();
  machine.runFor(6);

  EXPECT_EQ(machine.application.terminations(), 1);
  EXPECT_THAT(machine.tasks.launches(), IsEmpty());
}

}  // namespace
}  // namespace karno
