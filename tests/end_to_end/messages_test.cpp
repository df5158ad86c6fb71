#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "expected_logs.h"
#include "hands.h"
#include "places.h"

namespace karno::test {
namespace {

using ::testing::ElementsAreArray;
using ::testing::SizeIs;

constexpr const char* kStartedAgain = "INFO Main: Started Karno successfully";
constexpr const char* kLauncherFailedToStart = "*** ERROR *** Main: Failed to start Karno";

Messages startMessages() { return joined({openingMessages(), {kFirstStartup}, fileProviderMessages()}); }

std::filesystem::path clientOf(const Machine& machine) { return machine.helper() / "Contents/MacOS/Karno"; }

// Starts the launcher and presses that message's button in the client's window, after which the client
// leaves.
void startAndPress(Machine& machine, const std::string& message) {
  machine.start();
  const auto window = findWindow(machine, "Karno.app");
  ASSERT_TRUE(window) << machine.consoleText();
  pressMessageButton(machine, *window, message);
}

// The alert is the updater's: on a Mac the quit would be refused while it is up.
TEST(Messages, OfTheClientSteerTheUpdaterAndEndTheLauncherOnceTheUpdatersAlertIsAnswered) {
  Machine machine(builtTools());
  machine.useFeed(kNoFeed);
  const std::string aborted =
      "WARN Sparkle[ABORT] Update Aborted (Error Domain=SUSparkleErrorDomain Code=1002 \"The list of updates "
      "could "
      "not be fetched: Could not connect to the server.\" UserInfo={NSLocalizedDescription=The list of "
      "updates "
      "could not be fetched: Could not connect to the server.})";

  machine.startWithScript("1:disable-automatic-updates,1.2:check-for-updates");
  waitForClientWindow(machine);
  ASSERT_TRUE(machine.waitForMessage(aborted)) << machine.consoleText();
  const auto alert = findWindow(machine, kLauncherTitle);
  ASSERT_TRUE(alert) << machine.consoleText();
  machine.in({"karnoctl", "post", "enable-automatic-updates"});
  machine.in({"karnoctl", "post", "user-selected-quit"});
  const bool hasQuitUnderTheAlert = machine.waitForMessage(kTerminating, std::chrono::seconds(3));
  pressKey(machine, *alert, "Return");

  EXPECT_FALSE(hasQuitUnderTheAlert);
  EXPECT_EQ(machine.waitForEnd(), 0);
  EXPECT_THAT(
      machine.console(),
      ElementsAreArray(joined({startMessages(),
                               {"INFO Notify[LISTEN] Received 'disable-automatic-updates'",
                                "INFO Sparkle[CONFIG] Check updates automatically=0",
                                "INFO Notify[LISTEN] Received 'check-for-updates'",
                                std::string("INFO Sparkle[CHECK] Checking for updates (") + kNoFeed + ")",
                                aborted, "INFO Notify[LISTEN] Received 'enable-automatic-updates'",
                                "INFO Sparkle[CONFIG] Check updates automatically=1"},
                               quittingMessages(),
                               {kTerminating}})));
}

TEST(Messages, ThatTheClientIsTerminatingEndTheLauncher) {
  Machine machine(builtTools());

  machine.startWithScript("1:app-is-terminating");

  EXPECT_EQ(machine.waitForEnd(), 0);
  EXPECT_THAT(withoutClientsEnd(machine.console()),
              ElementsAreArray(joined({startMessages(),
                                       {"INFO Notify[LISTEN] Received 'app-is-terminating'",
                                        "INFO AppDelegate[TERMINATE] Reason: Karno.app is terminated"},
                                       {kTerminating}})));
}

TEST(CrashAlert, EndsTheLauncherByItsSecondButton) {
  Machine machine(builtTools());
  machine.startWithScript("1:app-is-terminating-abnormally=disk full");
  waitForClientWindow(machine);
  const auto alert = findWindow(machine, kLauncherTitle);
  ASSERT_TRUE(alert) << machine.consoleText();

  pressAlertButton(machine, *alert, 1);

  EXPECT_EQ(machine.waitForEnd(), 0);
  EXPECT_THAT(
      machine.console(),
      ElementsAreArray(joined(
          {startMessages(),
           {"INFO Notify[LISTEN] Received 'app-is-terminating-abnormally'",
            "*** ERROR *** Abnormal[TERMINATION] Karno.app terminated abnormally. (reason=disk full)",
            "INFO Abnormal[TERMINATION] User elected not to restart Karno after terminating abnormally.",
            "INFO AppDelegate[TERMINATE] Reason: User selected quit for crash", kTerminating}})));
}

TEST(CrashAlert, EndsTheLauncherByEscape) {
  Machine machine(builtTools());
  machine.start();
  ASSERT_TRUE(machine.waitForMessage(kStarted)) << machine.consoleText();
  waitForClientWindow(machine);
  machine.in({"karnoctl", "post", "app-is-terminating-abnormally"});
  const auto alert = findWindow(machine, kLauncherTitle);
  ASSERT_TRUE(alert) << machine.consoleText();

  pressKey(machine, *alert, "Escape");

  EXPECT_EQ(machine.waitForEnd(), 0);
  EXPECT_THAT(
      machine.console(),
      ElementsAreArray(joined(
          {startMessages(),
           {"INFO Notify[LISTEN] Received 'app-is-terminating-abnormally'",
            "*** ERROR *** Abnormal[TERMINATION] Karno.app terminated abnormally. (reason=(null))",
            "INFO Abnormal[TERMINATION] User elected not to restart Karno after terminating abnormally.",
            "INFO AppDelegate[TERMINATE] Reason: User selected quit for crash", kTerminating}})));
}

TEST(Restart, StartsANewClientOnceTheOldOneHasLeft) {
  Machine machine(builtTools());
  startAndPress(machine, "app-needs-restart");
  ASSERT_TRUE(machine.waitForMessages(2, kStartedAgain)) << machine.consoleText();

  const auto clients = machine.processesOf(clientOf(machine));
  machine.in({"karnoctl", "post", "user-selected-quit"});

  EXPECT_THAT(clients, SizeIs(1));
  EXPECT_EQ(machine.waitForEnd(), 0);
  EXPECT_THAT(machine.console(),
              ElementsAreArray(joined({startMessages(),
                                       {"INFO Notify[LISTEN] Received 'app-needs-restart'",
                                        "INFO Notify[LISTEN] Restarting Karno.app."},
                                       leavingMessages("it.vantul.Karno"),
                                       {"INFO Startup[LAUNCH] Launching Karno.app",
                                        "INFO Startup[LAUNCH] Launched Karno.app (pid: N)", kStartedAgain},
                                       quittingMessages(),
                                       {kTerminating}})));
}

TEST(Restart, FailsWhenTheClientStays) {
  Machine machine(builtTools());
  machine.start();
  ASSERT_TRUE(machine.waitForMessage(kStarted)) << machine.consoleText();
  waitForClientWindow(machine);
  machine.in({"karnoctl", "post", "app-needs-restart"});
  const auto alert = findWindow(machine, kLauncherTitle);
  ASSERT_TRUE(alert) << machine.consoleText();

  const auto clients = machine.processesOf(clientOf(machine));
  pressKey(machine, *alert, "Return");

  EXPECT_THAT(clients, SizeIs(1));
  EXPECT_EQ(machine.waitForEnd(), 0);
  EXPECT_THAT(
      machine.console(),
      ElementsAreArray(joined(
          {startMessages(),
           {"INFO Notify[LISTEN] Received 'app-needs-restart'", "INFO Notify[LISTEN] Restarting Karno.app."},
           stayingMessages("it.vantul.Karno"),
           {"*** ERROR *** Startup[RESTART] Failed to restart Karno - because it has not exited",
            kLauncherFailedToStart, "INFO AppDelegate[TERMINATE] Reason: Failed to start Karno.app",
            kTerminating}})));
}

}  // namespace
}  // namespace karno::test
