#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <thread>

#include "expected_logs.h"
#include "hands.h"
#include "places.h"

namespace karno::test {
namespace {

using ::testing::AnyOf;

// What a launcher has for its last words, and a second for a machine that is busy.
constexpr std::chrono::seconds kEndLimit{3};

int launcherOf(const Machine& machine) {
  std::vector<int> launchers;
  const auto isThere = [&] {
    launchers = machine.processesOf(machine.bundle() / "Contents/MacOS/Karno");
    return !launchers.empty();
  };
  return machine.waitUntil(isThere, std::chrono::seconds(20)) ? launchers[0] : 0;
}

bool isGone(const Machine& machine, int process) {
  return machine.waitUntil([process] { return ::kill(process, 0) != 0; }, kEndLimit);
}

class SignalDuringTheStart : public testing::TestWithParam<int> {};

TEST_P(SignalDuringTheStart, EndsTheLauncherAndItsClient) {
  Machine machine(builtTools());
  machine.start();
  const int launcher = launcherOf(machine);
  ASSERT_GT(launcher, 0) << machine.consoleText();
  std::this_thread::sleep_for(std::chrono::milliseconds(GetParam()));

  ::kill(launcher, SIGTERM);

  EXPECT_TRUE(isGone(machine, launcher)) << machine.consoleText();
  EXPECT_THAT(machine.waitForEnd(), AnyOf(0, 128 + SIGTERM));
  EXPECT_FALSE(machine.hasProcesses());
}

// In milliseconds after it was seen, which is up to 50 after it began.
INSTANTIATE_TEST_SUITE_P(After, SignalDuringTheStart, testing::Values(0, 20, 40, 60, 90, 200));

TEST(Signals, EndAClientThatHasOnlyJustStarted) {
  Machine machine(builtTools());
  machine.start();
  std::vector<int> clients;
  ASSERT_TRUE(machine.waitUntil(
      [&] {
        clients = machine.processesOf(machine.helper() / "Contents/MacOS/Karno");
        return !clients.empty();
      },
      std::chrono::seconds(20)))
      << machine.consoleText();

  ::kill(clients[0], SIGTERM);

  EXPECT_TRUE(isGone(machine, clients[0])) << machine.consoleText();
  EXPECT_EQ(machine.waitForEnd(), 0);
}

TEST(Signals, EndALauncherThatAsksSomethingWithoutAnAnswer) {
  Machine machine(builtTools());
  machine.start();
  ASSERT_TRUE(machine.waitForMessage(kStarted)) << machine.consoleText();
  machine.in({"karnoctl", "post", "app-is-terminating-abnormally", "--reason", "a test"});
  ASSERT_TRUE(findWindow(machine, kLauncherTitle)) << machine.consoleText();
  const int launcher = launcherOf(machine);
  const auto before = machine.console();

  ::kill(launcher, SIGTERM);

  EXPECT_TRUE(isGone(machine, launcher)) << machine.consoleText();
  EXPECT_EQ(machine.waitForEnd(), 0);
  const auto after = machine.console();
  EXPECT_EQ(after.size(), before.size() + 1);
  EXPECT_EQ(after.back(), kTerminating);
  EXPECT_EQ(machine.log().back(), kTerminating);
}

TEST(Signals, OfATerminalEndTheLauncherInOrderToo) {
  Machine machine(builtTools());
  machine.start();
  ASSERT_TRUE(machine.waitForMessage(kStarted)) << machine.consoleText();
  const int launcher = launcherOf(machine);

  ::kill(launcher, SIGHUP);

  EXPECT_EQ(machine.waitForEnd(), 0);
  EXPECT_EQ(machine.log().back(), kTerminating);
}

}  // namespace
}  // namespace karno::test
