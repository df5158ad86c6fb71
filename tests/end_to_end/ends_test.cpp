#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>

#include "expected_logs.h"
#include "places.h"

namespace karno::test {
namespace {

using ::testing::ElementsAreArray;
using ::testing::SizeIs;

Messages runUntilClientEnded(const std::string& statusAndReason) {
  return joined({openingMessages(),
                 {kFirstStartup},
                 fileProviderMessages(),
                 clientEndedMessages(statusAndReason),
                 {kTerminating}});
}

TEST(End, FollowsAClientThatEndsWithAStatusOfItsOwn) {
  Machine machine(builtTools());

  machine.startWithScript("1:exit=3");

  EXPECT_EQ(machine.waitForEnd(), 0);
  EXPECT_THAT(machine.console(), ElementsAreArray(runUntilClientEnded("status:3, reason:1")));
}

TEST(End, FollowsAClientThatCrashes) {
  Machine machine(builtTools());

  machine.startWithScript("1:crash");

  EXPECT_EQ(machine.waitForEnd(), 0);
  EXPECT_THAT(machine.console(), ElementsAreArray(runUntilClientEnded("status:6, reason:2")));
}

TEST(End, FollowsAClientThatIsTerminatedFromOutside) {
  Machine machine(builtTools());
  machine.start();
  ASSERT_TRUE(machine.waitForMessage(kStarted)) << machine.consoleText();
  const auto clients = machine.processesOf(machine.helper() / "Contents/MacOS/Karno");
  ASSERT_THAT(clients, SizeIs(1));

  ::kill(clients[0], SIGKILL);

  EXPECT_EQ(machine.waitForEnd(), 0);
  EXPECT_THAT(machine.console(), ElementsAreArray(runUntilClientEnded("status:9, reason:2")));
}

TEST(End, IsOrderlyWhenTheLauncherIsTerminatedFromOutside) {
  Machine machine(builtTools());
  machine.start();
  ASSERT_TRUE(machine.waitForMessage(kStarted)) << machine.consoleText();
  const auto launchers = machine.processesOf(machine.bundle() / "Contents/MacOS/Karno");
  ASSERT_THAT(launchers, SizeIs(1));

  ::kill(launchers[0], SIGTERM);

  EXPECT_EQ(machine.waitForEnd(), 0);
  EXPECT_THAT(
      machine.console(),
      ElementsAreArray(joined({openingMessages(), {kFirstStartup}, fileProviderMessages(), {kTerminating}})));
}

TEST(End, TakesTheClientAlongWhenTheLauncherIsKilled) {
  Machine machine(builtTools());
  machine.start();
  ASSERT_TRUE(machine.waitForMessage(kStarted)) << machine.consoleText();
  const auto launchers = machine.processesOf(machine.bundle() / "Contents/MacOS/Karno");
  ASSERT_THAT(launchers, SizeIs(1));

  ::kill(launchers[0], SIGKILL);

  EXPECT_EQ(machine.waitForEnd(), 128 + SIGKILL);
  EXPECT_FALSE(machine.hasProcesses());
}

TEST(End, LeavesNoProcessesBehind) {
  Machine machine(builtTools());
  machine.startWithScript("1:user-selected-quit");

  ASSERT_EQ(machine.waitForEnd(), 0);

  EXPECT_FALSE(machine.hasProcesses());
}

TEST(End, LeavesNoProcessesBehindWhenStartIsTerminated) {
  Machine machine(builtTools());
  machine.start();
  ASSERT_TRUE(machine.waitForMessage(kStarted)) << machine.consoleText();

  machine.signalStart(SIGTERM);

  EXPECT_EQ(machine.waitForEnd(), 128 + SIGTERM);
  EXPECT_FALSE(machine.hasProcesses());
}

TEST(End, ComesToAClientThatIgnoresTermination) {
  Machine machine(builtTools());
  machine.startWithScript("0:ignore-term");
  ASSERT_TRUE(machine.waitForMessage(kStarted)) << machine.consoleText();
  machine.in({"karnoctl", "post", "user-selected-quit"});

  EXPECT_EQ(machine.waitForEnd(), 0);

  EXPECT_FALSE(machine.hasProcesses());
}

}  // namespace
}  // namespace karno::test
