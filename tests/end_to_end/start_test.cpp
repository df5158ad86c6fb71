#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "expected_logs.h"
#include "places.h"

namespace karno::test {
namespace {

using ::testing::Contains;
using ::testing::ElementsAreArray;

TEST(Start, RunsFromTheBannerToTheClientsWishToQuit) {
  Machine machine(builtTools());
  machine.start();
  ASSERT_TRUE(machine.waitForMessage(kStarted)) << machine.consoleText();

  const CommandResult posted = machine.in({"karnoctl", "post", "user-selected-quit"});

  EXPECT_EQ(posted.status, 0) << posted.output;
  EXPECT_EQ(machine.waitForEnd(), 0);
  EXPECT_THAT(
      machine.console(),
      ElementsAreArray(joined(
          {openingMessages(), {kFirstStartup}, fileProviderMessages(), quittingMessages(), {kTerminating}})));
}

// The last line is logged while the launcher ends, when nobody flushes any more.
TEST(Start, WritesEveryLineIntoTheLogFile) {
  Machine machine(builtTools());
  machine.start();
  ASSERT_TRUE(machine.waitForMessage(kStarted)) << machine.consoleText();
  machine.in({"karnoctl", "post", "user-selected-quit"});

  ASSERT_EQ(machine.waitForEnd(), 0);

  EXPECT_THAT(
      machine.log(),
      ElementsAreArray(joined(
          {openingMessages(), {kFirstStartup}, fileProviderMessages(), quittingMessages(), {kTerminating}})));
}

TEST(Start, EndsWithStatusZeroAfterTheClientsScriptedQuit) {
  Machine machine(builtTools());

  machine.startWithScript("1:user-selected-quit");

  EXPECT_EQ(machine.waitForEnd(), 0);
  EXPECT_THAT(machine.log(), Contains("INFO AppDelegate[TERMINATE] Reason: User selected quit"));
}

TEST(Start, TrustsTheSettledChoiceOfBuildTheSecondTime) {
  Machine machine(builtTools());
  machine.startWithScript("1:user-selected-quit");
  ASSERT_EQ(machine.waitForEnd(), 0);

  machine.startWithScript("1:user-selected-quit");

  EXPECT_EQ(machine.waitForEnd(), 0);
  EXPECT_THAT(machine.console(), Contains(kVerified));
}

TEST(Start, AddsToTheLogFileOfTheStartBefore) {
  Machine machine(builtTools());
  machine.startWithScript("1:user-selected-quit");
  ASSERT_EQ(machine.waitForEnd(), 0);
  const auto first = machine.log();

  machine.startWithScript("1:user-selected-quit");
  ASSERT_EQ(machine.waitForEnd(), 0);

  auto both = machine.log();
  ASSERT_GT(both.size(), first.size());
  both.resize(first.size());
  EXPECT_EQ(both, first);
}

TEST(Start, ObeysTheAdministratorsChoiceOfBuild) {
  Machine machine(builtTools(), {"--admin", "USE_FILE_PROVIDER=YES"});

  machine.startWithScript("1:user-selected-quit");

  EXPECT_EQ(machine.waitForEnd(), 0);
  EXPECT_THAT(machine.console(), Contains("INFO EmbeddedApp[CONFIGURE] Use File Provider = Yes (admin)"));
}

TEST(Start, HandsTheClientTheLaunchersProcessIdentifierInOneWord) {
  Machine machine(builtTools());
  machine.start();
  ASSERT_TRUE(machine.waitForMessage(kStarted)) << machine.consoleText();

  const auto clients = machine.processesOf(machine.helper() / "Contents/MacOS/Karno");
  const auto launchers = machine.processesOf(machine.bundle() / "Contents/MacOS/Karno");

  ASSERT_EQ(clients.size(), 1u);
  ASSERT_EQ(launchers.size(), 1u);
  const std::string program = (machine.helper() / "Contents/MacOS/Karno").string();
  EXPECT_EQ(commandLineOf(clients[0]),
            (std::vector<std::string>{program, "--parent " + std::to_string(launchers[0])}));
}

TEST(Start, TellsTheLauncherTheArgumentsThatFollowTwoDashes) {
  Machine machine(builtTools());
  machine.start({"--env", "KARNO_CLIENT_SCRIPT=1:user-selected-quit", "--", "-launch", "Karno.app"});

  EXPECT_EQ(machine.waitForEnd(), 0);

  EXPECT_THAT(withoutClientsEnd(machine.console()),
              ElementsAreArray(
                  joined({openingMessages(), fileProviderMessages(), quittingMessages(), {kTerminating}})));
}

}  // namespace
}  // namespace karno::test
