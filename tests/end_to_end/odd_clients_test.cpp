#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>
#include <fstream>
#include <sstream>

#include "expected_logs.h"
#include "places.h"

namespace karno::test {
namespace {

namespace fs = std::filesystem;

using ::testing::ElementsAreArray;
using ::testing::SizeIs;
using ::testing::UnorderedElementsAreArray;

Messages runUntilOddClientEnded(const std::string& statusAndReason) {
  return joined({openingMessages(),
                 {kFirstStartup},
                 fileProviderMessages(),
                 clientEndedMessages(statusAndReason),
                 {kTerminating}});
}

fs::path oddClientOf(const Machine& machine) { return machine.helper() / "Contents/MacOS/Karno"; }

// Puts a shell script in the place of the client.
void replaceClient(const Machine& machine, const std::string& script) {
  fs::remove(oddClientOf(machine));
  std::ofstream(oddClientOf(machine)) << "#!/bin/sh\n" << script;
  fs::permissions(oddClientOf(machine), fs::perms::owner_all);
}

bool ignoresTermination(int process) {
  std::ifstream status("/proc/" + std::to_string(process) + "/status");
  for (std::string line; std::getline(status, line);) {
    if (!line.starts_with("SigIgn:")) continue;
    return (std::stoull(line.substr(7), nullptr, 16) >> (SIGTERM - 1) & 1U) != 0;
  }
  return false;
}

TEST(OddClient, MayCloseItsStandardStreams) {
  Machine machine(builtTools());
  replaceClient(machine, "exec 0<&- 1>&- 2>&-\nsleep 2\nexit 4\n");

  machine.start();

  EXPECT_EQ(machine.waitForEnd(), 0);
  EXPECT_THAT(machine.console(), ElementsAreArray(runUntilOddClientEnded("status:4, reason:1")));
}

TEST(OddClient, HasEndedAlthoughAProcessThatItStartedRunsOn) {
  Machine machine(builtTools());
  replaceClient(machine, "sleep 600 &\nsleep 2\nexit 5\n");
  machine.start();
  ASSERT_TRUE(machine.waitForMessage("WARN Startup[TERMINATED] Child terminated (status:5, reason:1)"));

  const auto grandchildren = machine.processesOf("/bin/sleep");

  EXPECT_THAT(grandchildren, SizeIs(1));
  EXPECT_EQ(machine.waitForEnd(), 0);
  EXPECT_THAT(machine.console(), ElementsAreArray(runUntilOddClientEnded("status:5, reason:1")));
}

// Its end may be told before the line that says it was launched.
TEST(OddClient, MayEndBeforeTheLauncherHasNotedItsIdentifier) {
  Machine machine(builtTools());
  fs::copy_file("/bin/true", oddClientOf(machine), fs::copy_options::overwrite_existing);

  machine.start();

  EXPECT_EQ(machine.waitForEnd(), 0);
  EXPECT_THAT(machine.console(), UnorderedElementsAreArray(runUntilOddClientEnded("status:0, reason:1")));
}

TEST(OddClient, RunsOnWhenItIgnoresTerminationAndEndsWhenItIsKilled) {
  Machine machine(builtTools());
  machine.startWithScript("0:ignore-term");
  ASSERT_TRUE(machine.waitForMessage(kStarted)) << machine.consoleText();
  const auto clients = machine.processesOf(oddClientOf(machine));
  ASSERT_THAT(clients, SizeIs(1));
  ASSERT_TRUE(machine.waitUntil([&] { return ignoresTermination(clients[0]); }, std::chrono::seconds(20)));

  ::kill(clients[0], SIGTERM);
  const bool endedByRequest =
      machine.waitForMessage(clientEndedMessages("status:15, reason:2").front(), std::chrono::seconds(1));
  ::kill(clients[0], SIGKILL);

  EXPECT_FALSE(endedByRequest);
  EXPECT_EQ(machine.waitForEnd(), 0);
  EXPECT_THAT(machine.console(), ElementsAreArray(runUntilOddClientEnded("status:9, reason:2")));
}

int numberIn(const fs::path& file) {
  int number = 0;
  std::ifstream(file) >> number;
  return number;
}

// In hundredths of a second, of all its threads.
long processorTimeOf(int process) {
  std::ifstream file("/proc/" + std::to_string(process) + "/stat");
  std::string text;
  std::getline(file, text);
  std::istringstream fields(text.substr(text.rfind(')') + 1));
  std::string skipped;
  for (int field = 3; field < 14; ++field) fields >> skipped;
  long user = 0;
  long system = 0;
  fields >> user >> system;
  return user + system;
}

TEST(OddClient, IsNoDeadOneWhenItIsStoppedAsOnAMac) {
  Machine machine(builtTools());
  const fs::path identifier = machine.root() / "client";
  const fs::path leave = machine.root() / "leave";
  replaceClient(machine, "echo $$ >'" + identifier.string() + "'\nuntil [ -e '" + leave.string() +
                             "' ]; do sleep 0.1; done\nexit 3\n");
  machine.start({"--env", "LD_PRELOAD=" + waitsOfAMac().string()});
  ASSERT_TRUE(machine.waitForMessage(kStarted)) << machine.consoleText();
  const auto launchers = machine.processesOf(machine.bundle() / "Contents/MacOS/Karno");
  ASSERT_THAT(launchers, SizeIs(1));
  ASSERT_TRUE(machine.waitUntil([&] { return numberIn(identifier) > 0; }, std::chrono::seconds(20)));
  const int client = numberIn(identifier);

  const long before = processorTimeOf(launchers[0]);
  ::kill(client, SIGSTOP);
  const bool hasEnded = machine.waitForMessage(kTerminating, std::chrono::seconds(3));
  const long spent = processorTimeOf(launchers[0]) - before;
  std::ofstream{leave};
  ::kill(client, SIGCONT);

  EXPECT_FALSE(hasEnded);
  EXPECT_LT(spent, 5);
  EXPECT_EQ(machine.waitForEnd(), 0);
  EXPECT_THAT(machine.console(), ElementsAreArray(runUntilOddClientEnded("status:3, reason:1")));
}

}  // namespace
}  // namespace karno::test
