#include "app/main_window.h"

#include <gmock/gmock.h>

#include "app/startup_manager.h"
#include "elements_are.h"
#include "fake_platform.h"
#include "launcher.h"
#include "printing.h"

namespace karno {
namespace {

using karno::test::ElementsAre;
using platform::Value;
using test::FakePlatform;
using test::Line;
using ::testing::IsEmpty;
using ::testing::Pair;

constexpr const char* kWindowStrings =
    R"({"DRIVE_MOUNT_FAILED": "The drive could not be mounted.", "OK": "Fine"})";

const platform::Alert kLaunchFailureAlert{.style = platform::AlertStyle::Critical,
                                          .messageText = "Karno",
                                          .informativeText = "The drive could not be mounted.",
                                          .buttons = {{.title = "Fine", .keyEquivalent = ""}}};

std::shared_ptr<MainWindow> makeMainWindow(FakePlatform& machine) {
  return std::make_shared<MainWindow>(machine.windows.prompt);
}

StartupManager& startupManager() { return StartupManager::instance(); }

TEST(MainWindowStartUp, ObservesItsOwnClosingAndChecksTheSystem) {
  FakePlatform machine;
  const auto window = makeMainWindow(machine);

  window->startUp();

  EXPECT_EQ(machine.windows.prompt.observerCount(), 1U);
  EXPECT_THAT(machine.consoleMessages(),
              ElementsAre(Line("INFO", "EmbeddedApp[CONFIGURE] Use File Provider = Yes (first startup)"),
                          Line("INFO", "Startup[CHECK] Checking system for FileProvider..."),
                          Line("INFO", "Startup[CHECK] Using FileProvider"),
                          Line("INFO", "Main: System is okay - launching Karno")));
}

TEST(MainWindowStartUp, ObservesItsOwnClosingBeforeTheCheck) {
  FakePlatform machine;
  const auto window = makeMainWindow(machine);
  std::size_t observersThen = 99;
  machine.whenLogged(Line("INFO", "Startup[CHECK] Checking system for FileProvider..."),
                     [&] { observersThen = machine.windows.prompt.observerCount(); });

  window->startUp();

  EXPECT_EQ(observersThen, 1U);
}

TEST(MainWindowStartUp, HasBecomeTheManagersDelegateBeforeTheCheck) {
  FakePlatform machine;
  machine.withEmbeddedBuilds();
  const auto window = makeMainWindow(machine);

  window->startUp();
  machine.runUntilIdle();

  EXPECT_THAT(machine.consoleMessages(),
              ::testing::Contains(Line("INFO", "Main: Started Karno successfully")));
}

TEST(MainWindowClosing, OnlyRemovesTheObservation) {
  FakePlatform machine;
  const auto window = makeMainWindow(machine);
  window->registerNotifications();

  machine.windows.prompt.close();
  machine.runFor(6);

  EXPECT_EQ(machine.windows.prompt.observerCount(), 0U);
  EXPECT_EQ(machine.application.terminations(), 0);
  EXPECT_THAT(machine.console(), IsEmpty());
}

TEST(MainWindowClosing, RemovesEveryObservation) {
  FakePlatform machine;
  const auto window = makeMainWindow(machine);
  window->registerNotifications();
  window->registerNotifications();

  machine.windows.prompt.close();

  EXPECT_EQ(machine.windows.prompt.observerCount(), 0U);
}

TEST(MainWindowCallbacks, LaunchTheEmbeddedApplicationWhenTheSystemIsOkay) {
  FakePlatform machine;
  machine.withEmbeddedBuilds();
  const auto window = makeMainWindow(machine);

  machine.onThread([&] { window->startUpDidCheckSystemSuccessfully(startupManager()); }, "caller");
  machine.runUntilIdle();

  EXPECT_EQ(machine.consoleMessages().at(0), Line("INFO", "Main: System is okay - launching Karno"));
  EXPECT_EQ(machine.consoleLog.entries().at(0).thread, "caller");
  EXPECT_THAT(machine.tasks.running(), ElementsAre(5001));
}

TEST(MainWindowCallbacks, LaunchWithoutTheMainThread) {
  FakePlatform machine;
  machine.withEmbeddedBuilds();
  const auto window = makeMainWindow(machine);
  std::vector<std::int32_t> runningWhileUp;
  machine.alerts.answerNext(1000, [&] {
    machine.onThread([&] { window->startUpDidCheckSystemSuccessfully(startupManager()); });
    machine.runUntilIdle();
    runningWhileUp = machine.tasks.running();
  });

  machine.dispatch.mainQueue().async([&] { machine.alerts.runModal({}); });
  machine.runUntilIdle();

  EXPECT_THAT(runningWhileUp, ElementsAre(5001));
}

TEST(MainWindowCallbacks, CloseTheWindowOnTheMainQueueAfterALaunch) {
  FakePlatform machine;
  const auto window = makeMainWindow(machine);
  window->registerNotifications();

  machine.onThread([&] { window->startUpDidLaunchKarnoSuccessfully(startupManager()); });
  machine.runUntilIdle();

  EXPECT_THAT(machine.consoleMessages(), ElementsAre(Line("INFO", "Main: Started Karno successfully")));
  EXPECT_EQ(machine.windows.prompt.closes(), 1);
  EXPECT_EQ(machine.windows.prompt.observerCount(), 0U);
}

TEST(MainWindowCallbacks, CloseTheWindowOnlyLaterWhenCalledOnTheMainThread) {
  FakePlatform machine;
  const auto window = makeMainWindow(machine);

  window->startUpDidLaunchKarnoSuccessfully(startupManager());

  EXPECT_EQ(machine.windows.prompt.closes(), 0);
}

TEST(MainWindowCallbacks, CloseTheWindowThroughTheMainDispatchQueue) {
  FakePlatform machine;
  const auto window = makeMainWindow(machine);

  window->startUpDidLaunchKarnoSuccessfully(startupManager());

  EXPECT_THAT(machine.dispatch.mainSubmissions(), ElementsAre("main queue"));
}

// What the main dispatch queue is given waits for the block of it that runs, and so for its alert.
TEST(MainWindowCallbacks, CloseTheWindowOnlyAfterAnAlertThatIsOpen) {
  FakePlatform machine;
  const auto window = makeMainWindow(machine);
  int closesWhileUp = 0;
  machine.alerts.answerNext(1000, [&] {
    window->startUpDidLaunchKarnoSuccessfully(startupManager());
    machine.runUntilIdle();
    closesWhileUp = machine.windows.prompt.closes();
  });

  machine.dispatch.mainQueue().async([&] { machine.alerts.runModal({}); });
  machine.runUntilIdle();

  EXPECT_EQ(closesWhileUp, 0);
  EXPECT_EQ(machine.windows.prompt.closes(), 1);
}

TEST(MainWindowCallbacks, ShowTheLaunchFailureOnlyAfterAnotherAlertThatIsOpen) {
  FakePlatform machine;
  machine.withStrings(kWindowStrings);
  const auto window = makeMainWindow(machine);
  std::size_t shownWhileUp = 0;
  machine.alerts.answerNext(1000, [&] {
    window->startUpDidFailToLaunchKarno(startupManager());
    machine.runUntilIdle();
    shownWhileUp = machine.alerts.shown().size();
  });

  machine.dispatch.mainQueue().async([&] { machine.alerts.runModal({}); });
  machine.runUntilIdle();

  EXPECT_EQ(shownWhileUp, 1U);
  EXPECT_EQ(machine.alerts.shown().size(), 2U);
}

TEST(MainWindowCallbacks, ShowAnAlertAndQuitWhenALaunchFailed) {
  FakePlatform machine;
  machine.withStrings(kWindowStrings);
  const auto window = makeMainWindow(machine);

  machine.onThread([&] { window->startUpDidFailToLaunchKarno(startupManager()); });
  machine.runFor(6);

  EXPECT_THAT(machine.alerts.shown(), ElementsAre(kLaunchFailureAlert));
  EXPECT_THAT(machine.log(),
              ElementsAre(Line("*** ERROR ***", "Main: Failed to start Karno"),
                          Line("INFO", "AppDelegate[TERMINATE] Reason: Failed to start Karno.app")));
  EXPECT_EQ(machine.application.terminations(), 1);
}

TEST(MainWindowCallbacks, ShowTheAlertLaterThroughTheMainOperationQueue) {
  FakePlatform machine;
  const auto window = makeMainWindow(machine);

  window->startUpDidFailToLaunchKarno(startupManager());

  EXPECT_THAT(machine.alerts.shown(), IsEmpty());
  EXPECT_THAT(machine.dispatch.mainSubmissions(), ElementsAre("main operation queue"));
}

TEST(MainWindowCallbacks, QuitOnlyOnceTheAlertIsDismissed) {
  FakePlatform machine;
  machine.withStrings(kWindowStrings);
  std::vector<Line> linesWhileUp;
  machine.alerts.answerNext(1000, [&] {
    machine.runFor(60);
    linesWhileUp = machine.log();
  });
  const auto window = makeMainWindow(machine);

  window->startUpDidFailToLaunchKarno(startupManager());
  machine.runFor(100);

  EXPECT_THAT(linesWhileUp, ElementsAre(Line("*** ERROR ***", "Main: Failed to start Karno")));
  EXPECT_EQ(machine.application.terminatedAtSeconds(), 61);
}

TEST(MainWindowCallbacks, ResetTheUpdaterAndQuitWhenTheSetupFailed) {
  FakePlatform machine;
  machine.withStrings(kWindowStrings);
  const auto window = makeMainWindow(machine);

  machine.onThread([&] { window->startUpDidFailToSetupSystem(startupManager()); });
  machine.runFor(6);

  EXPECT_THAT(machine.alerts.shown(), ElementsAre(kLaunchFailureAlert));
  EXPECT_THAT(machine.log(),
              ElementsAre(Line("*** ERROR ***", "Main: Failed to setup system"),
                          Line("*** ERROR ***", "Main: Failed to start Karno"),
                          Line("INFO", "AppDelegate[TERMINATE] Reason: Failed to start Karno.app")));
  EXPECT_THAT(machine.userDefaults.standard().writes, ElementsAre(Pair("SUHasLaunchedBefore", Value(false))));
}

TEST(MainWindowCallbacks, ResetTheUpdaterOnTheCallingThreadBeforeTheLaunchFailure) {
  FakePlatform machine;
  const auto window = makeMainWindow(machine);
  std::vector<Line> lines;
  std::string thread;
  machine.userDefaults.standard().whenWritten = [&] {
    lines = machine.consoleMessages();
    thread = machine.scheduler.currentThreadName();
  };

  machine.onThread([&] { window->startUpDidFailToSetupSystem(startupManager()); }, "caller");
  machine.runUntilIdle();

  EXPECT_THAT(lines, ElementsAre(Line("*** ERROR ***", "Main: Failed to setup system")));
  EXPECT_EQ(thread, "caller");
}

TEST(MainWindowCallbacks, LeaveTheUpdaterAloneWhenOnlyALaunchFailed) {
  FakePlatform machine;
  machine.withStrings(kWindowStrings);
  const auto window = makeMainWindow(machine);

  window->startUpDidFailToLaunchKarno(startupManager());
  machine.runFor(6);

  EXPECT_THAT(machine.userDefaults.standard().writes, IsEmpty());
}

TEST(MainWindowCallbacks, QuitWhenTheManagerSaysSo) {
  FakePlatform machine;
  const auto window = makeMainWindow(machine);

  machine.onThread([&] { window->startupAppShouldTerminate(startupManager()); }, "caller");
  machine.runFor(6);

  EXPECT_EQ(machine.consoleLog.entries().at(1).thread, "caller");
  EXPECT_THAT(machine.log(),
              ElementsAre(Line("INFO", "Main: App should terminate"),
                          Line("INFO", "AppDelegate[TERMINATE] Reason: App should terminate")));
  EXPECT_EQ(machine.application.terminations(), 1);
}

}  // namespace
}  // namespace karno
