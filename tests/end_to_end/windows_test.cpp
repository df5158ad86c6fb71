#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "embedded_client/client_layout.h"
#include "expected_logs.h"
#include "hands.h"
#include "places.h"

namespace karno::test {
namespace {

using ::testing::Contains;
using ::testing::ElementsAreArray;

TEST(ClientWindow, StandsOnTheScreenInItsFullSize) {
  Machine machine(builtTools());
  machine.start();

  const auto window = findWindow(machine, "Karno.app");

  ASSERT_TRUE(window) << machine.consoleText();
  EXPECT_EQ(window->width, client::clientLayout().width);
  EXPECT_EQ(window->height, client::clientLayout().height);
  EXPECT_TRUE(machine.waitUntil([&] { return coloursOf(machine, *window) > 20; }, std::chrono::seconds(20)));
}

TEST(ClientWindow, EndsTheLauncherByItsButtonToQuit) {
  Machine machine(builtTools());
  machine.start();
  const auto window = findWindow(machine, "Karno.app");
  ASSERT_TRUE(window) << machine.consoleText();

  pressMessageButton(machine, *window, "user-selected-quit");

  EXPECT_EQ(machine.waitForEnd(), 0);
  EXPECT_THAT(
      withoutClientsEnd(machine.console()),
      ElementsAreArray(joined(
          {openingMessages(), {kFirstStartup}, fileProviderMessages(), quittingMessages(), {kTerminating}})));
}

TEST(ClientWindow, PostsEveryMessageThatLeavesItRunning) {
  Machine machine(builtTools());
  machine.start();
  const auto window = findWindow(machine, "Karno.app");
  ASSERT_TRUE(window) << machine.consoleText();

  pressMessageButton(machine, *window, "enable-automatic-updates");
  pressMessageButton(machine, *window, "disable-automatic-updates");

  EXPECT_TRUE(machine.waitForMessage("INFO Notify[LISTEN] Received 'enable-automatic-updates'"));
  EXPECT_TRUE(machine.waitForMessage("INFO Notify[LISTEN] Received 'disable-automatic-updates'"));
}

TEST(FailureAlert, HasTheLaunchersIconInItsFrame) {
  Machine machine(builtTools());
  std::filesystem::remove(machine.helper() / "Contents/MacOS/Karno");
  machine.start();
  const auto alert = findWindow(machine, "Karno");
  ASSERT_TRUE(alert) << machine.consoleText();

  const std::string icon =
      machine.in({"xprop", "-id", alert->identifier, "-notype", "32c", "_NET_WM_ICON"}).output;
  pressKey(machine, *alert, "Return");

  EXPECT_EQ(icon.substr(0, icon.find(", 0")), "_NET_WM_ICON = 128, 128");
  EXPECT_EQ(machine.waitForEnd(), 0);
}

TEST(FailureAlert, EndsTheLauncherWhenTheClientHasNoExecutable) {
  Machine machine(builtTools());
  std::filesystem::remove(machine.helper() / "Contents/MacOS/Karno");
  machine.start();
  const auto alert = findWindow(machine, "Karno");
  ASSERT_TRUE(alert) << machine.consoleText();

  pressKey(machine, *alert, "Return");

  EXPECT_EQ(machine.waitForEnd(), 0);
  EXPECT_THAT(
      machine.console(),
      ElementsAreArray(joined(
          {openingMessages(),
           {kFirstStartup, "INFO Startup[CHECK] Checking system for FileProvider...",
            "INFO Startup[CHECK] Using FileProvider", "INFO Main: System is okay - launching Karno",
            "INFO Startup[LAUNCH] Launching Karno.app",
            "WARN Startup[LAUNCH] Failed to launch '(null)'. Reason: Error Domain=NSPOSIXErrorDomain Code=2 "
            "\"The application has no executable file\" UserInfo={NSLocalizedDescription=The application has "
            "no executable file}",
            "*** ERROR *** Startup[LAUNCH] Failed to launch Karno. Reason: The application has no executable "
            "file",
            "*** ERROR *** Main: Failed to start Karno",
            "INFO AppDelegate[TERMINATE] Reason: Failed to start Karno.app", kTerminating}})));
}

TEST(FailureAlert, EndsTheLauncherWhenTheClientIsMissing) {
  Machine machine(builtTools());
  std::filesystem::remove_all(machine.helper());
  machine.start();
  const auto alert = findWindow(machine, "Karno");
  ASSERT_TRUE(alert) << machine.consoleText();

  pressKey(machine, *alert, "Return");

  EXPECT_EQ(machine.waitForEnd(), 0);
  EXPECT_THAT(
      machine.console(),
      ElementsAreArray(joined(
          {openingMessages(),
           {kFirstStartup, "INFO Startup[CHECK] Checking system for FileProvider...",
            "INFO Startup[CHECK] Using FileProvider", "INFO Main: System is okay - launching Karno",
            "WARN Utilities[BUNDLE] Could not find bundle for Karno.app (path:" + machine.helper().string() +
                ")",
            "WARN Startup[LAUNCH] Failed to launch Karno. Reason: Could not find embedded Karno app",
            "*** ERROR *** Startup[LAUNCH] Failed to launch Karno. Reason: Could not find embedded Karno app",
            "*** ERROR *** Main: Failed to start Karno",
            "INFO AppDelegate[TERMINATE] Reason: Failed to start Karno.app", kTerminating}})));
}

TEST(CrashAlert, StartsTheClientAgainWhenTheUserWantsIt) {
  Machine machine(builtTools());
  machine.start();
  ASSERT_TRUE(machine.waitForMessage(kStarted)) << machine.consoleText();
  waitForClientWindow(machine);
  machine.in({"karnoctl", "post", "app-is-terminating-abnormally", "--reason", "disk full"});
  const auto alert = findWindow(machine, "Karno");
  ASSERT_TRUE(alert) << machine.consoleText();

  pressKey(machine, *alert, "Return");

  EXPECT_TRUE(machine.waitForMessage(
      "*** ERROR *** Abnormal[TERMINATION] Karno.app terminated abnormally. (reason=disk full)"));
  EXPECT_TRUE(machine.waitForMessage(
      "INFO Abnormal[TERMINATION] User elected to restart Karno after terminating abnormally."));
  EXPECT_TRUE(machine.waitUntil(
      [&] { return machine.processesOf(machine.helper() / "Contents/MacOS/Karno").size() == 2; },
      std::chrono::seconds(20)));
}

}  // namespace
}  // namespace karno::test
