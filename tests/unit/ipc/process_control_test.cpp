#include <gmock/gmock.h>

#include <cerrno>

#include "elements_are.h"
#include "fake_platform.h"
#include "ipc/karno_process_utils.h"

namespace karno {
namespace {

using karno::test::ElementsAre;
using test::FakePlatform;
using test::Line;
using ::testing::Each;
using ::testing::IsEmpty;
using ::testing::SizeIs;

constexpr const char* kIdentifier = "it.vantul.Karno";

Line timedOut(int processIdentifier) {
  return {"WARN", "ProcessUtils[TERMINATE] Timed-out waiting for process " +
                      std::to_string(processIdentifier) + " to terminate."};
}

class InvalidProcess : public ::testing::TestWithParam<int> {};

TEST_P(InvalidProcess, IsNeverSignalled) {
  FakePlatform machine;

  EXPECT_FALSE(KarnoProcessUtils::terminateKarnoAppWithPid(GetParam(), "Updated"));

  EXPECT_THAT(machine.processes.signalled, IsEmpty());
  EXPECT_THAT(machine.consoleMessages(),
              ElementsAre(Line("WARN", "ProcessUtils[TERMINATE] Refusing to terminate Karno (pid:" +
                                           std::to_string(GetParam()) + ") - invalid pid")));
}

INSTANTIATE_TEST_SUITE_P(Terminate, InvalidProcess, ::testing::Values(0, -1, -2147483647));

TEST(Terminate, TellsWhenTheSignalCannotBeSent) {
  FakePlatform machine;

  EXPECT_FALSE(KarnoProcessUtils::terminateKarnoAppWithPid(77, "Updated"));

  EXPECT_THAT(
      machine.consoleMessages(),
      ElementsAre(Line(
          "WARN",
          "ProcessUtils[TERMINATE] Failed to terminate Karno (pid:77). Reason: No such process (errno: 3)")));
  EXPECT_THAT(machine.processes.waitThreads, IsEmpty());
}

TEST(Terminate, SucceedsWhenTheChildEndsOnTheSignal) {
  FakePlatform machine;
  machine.processTable.add(77);

  EXPECT_TRUE(KarnoProcessUtils::terminateKarnoAppWithPid(77, "Updated"));

  EXPECT_THAT(machine.processes.signalled, ElementsAre(77));
  EXPECT_THAT(machine.processes.waitThreads, ElementsAre("global(0)"));
  EXPECT_THAT(machine.consoleMessages(),
              ElementsAre(Line("WARN", "ProcessUtils[TERMINATE] Process 77 terminated successfully")));
}

TEST(Terminate, RefusesNoProcessFromTheFirstOn) {
  FakePlatform machine;

  EXPECT_FALSE(KarnoProcessUtils::terminateKarnoAppWithPid(1, "Updated"));

  EXPECT_THAT(machine.processes.signalled, ElementsAre(1));
}

TEST(Terminate, GivesUpAfterTenSecondsAndSendsNoStrongerSignal) {
  FakePlatform machine;
  machine.processTable.add(77, {.executablePath = "/bin/deaf"});
  machine.processTable.programs["/bin/deaf"].ignoresTermination = true;

  EXPECT_FALSE(KarnoProcessUtils::terminateKarnoAppWithPid(77, "Updated"));

  EXPECT_DOUBLE_EQ(machine.seconds(), 10.0);
  EXPECT_THAT(machine.processes.signalled, ElementsAre(77));
  EXPECT_THAT(machine.consoleMessages(), ElementsAre(timedOut(77)));
}

TEST(WaitForProcess, LastsAsLongAsTheChildLives) {
  FakePlatform machine;
  machine.processTable.add(77);
  machine.onThread([&] {
    machine.dispatch.sleep(3);
    machine.processTable.end(77);
  });

  EXPECT_TRUE(KarnoProcessUtils::waitForProcessTermination(77, 5, "Restart"));

  EXPECT_NEAR(machine.seconds(), 3, 0.01);
}

TEST(WaitForProcess, TakesOurNoChildForATimeOutAtOnce) {
  FakePlatform machine;

  EXPECT_FALSE(KarnoProcessUtils::waitForProcessTermination(77, 10, "Restart"));

  EXPECT_NEAR(machine.seconds(), 0, 0.01);
  EXPECT_THAT(machine.consoleMessages(), ElementsAre(timedOut(77)));
}

TEST(WaitForProcess, TellsOfAnyOtherFailure) {
  FakePlatform machine;
  machine.processes.waitResults[77] = {-1, EINVAL};

  EXPECT_FALSE(KarnoProcessUtils::waitForProcessTermination(77, 10, "Restart"));

  EXPECT_THAT(machine.consoleMessages(),
              ElementsAre(Line(
                  "WARN",
                  "ProcessUtils[TERMINATE] Failed to terminate process 77. Reason: Invalid argument (errno: "
                  "22)")));
}

TEST(WaitForProcess, ANegativeResultIsASuccessOnlyInTheMessage) {
  FakePlatform machine;
  machine.processes.waitResults[77] = {-5, 0};

  EXPECT_FALSE(KarnoProcessUtils::waitForProcessTermination(77, 10, "Restart"));

  EXPECT_THAT(machine.consoleMessages(),
              ElementsAre(Line("WARN", "ProcessUtils[TERMINATE] Process 77 terminated successfully")));
}

TEST(WaitForProcess, AnErrorLeftFromBeforeDoesNotMatterWhenTheChildWasReaped) {
  FakePlatform machine;
  machine.processes.waitResults[77] = {77, ECHILD};

  EXPECT_TRUE(KarnoProcessUtils::waitForProcessTermination(77, 10, "Restart"));
}

TEST(WaitForProcess, LeavesAWaitBehindThatNobodyHears) {
  FakePlatform machine;
  machine.processTable.add(77);
  EXPECT_FALSE(KarnoProcessUtils::waitForProcessTermination(77, 1, "Restart"));

  machine.processTable.end(77);
  machine.runFor(10);

  EXPECT_THAT(machine.consoleMessages(), ElementsAre(timedOut(77)));
}

TEST(WaitForProcess, WithoutTimeStillAnswers) {
  FakePlatform machine;
  machine.processTable.add(77);

  EXPECT_FALSE(KarnoProcessUtils::waitForProcessTermination(77, 0, "Restart"));

  EXPECT_THAT(machine.consoleMessages(), ElementsAre(timedOut(77)));
}

TEST(WaitForApplication, ReportsTheNextLookAfterItsEnd) {
  FakePlatform machine;
  machine.workspace.running = {{.processIdentifier = 77, .bundleIdentifier = kIdentifier}};
  machine.onThread([&] {
    machine.dispatch.sleep(1.1);
    machine.workspace.running.clear();
  });

  EXPECT_TRUE(KarnoProcessUtils::waitForApplicationToTerminateWithBundleID(kIdentifier, 5, "Restart"));

  EXPECT_DOUBLE_EQ(machine.seconds(), 1.5);
  EXPECT_THAT(machine.consoleMessages(),
              ElementsAre(Line("INFO", "ProcessUtils: Waiting for 'it.vantul.Karno' to terminate"),
                          Line("WARN", "ProcessUtils: 'it.vantul.Karno terminated (1.2 seconds)")));
}

TEST(WaitForApplication, LooksTwentyTimesInFiveSeconds) {
  FakePlatform machine;
  machine.workspace.running = {{.processIdentifier = 77, .bundleIdentifier = kIdentifier}};

  EXPECT_FALSE(KarnoProcessUtils::waitForApplicationToTerminateWithBundleID(kIdentifier, 5, "Restart"));

  EXPECT_THAT(machine.workspace.asked, SizeIs(20));
  EXPECT_DOUBLE_EQ(machine.workspace.asked.front().atSeconds, 0.25);
  EXPECT_DOUBLE_EQ(machine.workspace.asked.back().atSeconds, 5.0);
  EXPECT_DOUBLE_EQ(machine.seconds(), 5.0);
  EXPECT_EQ(machine.consoleMessages().back(),
            Line("WARN", "ProcessUtils: 'it.vantul.Karno' has not terminated (timed-out after 5.0 seconds)"));
}

class NoTime : public ::testing::TestWithParam<std::pair<double, const char*>> {};

TEST_P(NoTime, StillLooksOnce) {
  FakePlatform machine;
  machine.workspace.running = {{.processIdentifier = 77, .bundleIdentifier = kIdentifier}};

  EXPECT_FALSE(
      KarnoProcessUtils::waitForApplicationToTerminateWithBundleID(kIdentifier, GetParam().first, "Restart"));

  EXPECT_THAT(machine.workspace.asked, ElementsAre(test::FakeWorkspace::Asked{kIdentifier, 0.25}));
  EXPECT_EQ(machine.consoleMessages().back().message, GetParam().second);
}

INSTANTIATE_TEST_SUITE_P(
    WaitForApplication, NoTime,
    ::testing::Values(
        std::pair{0.0, "ProcessUtils: 'it.vantul.Karno' has not terminated (timed-out after 0.0 seconds)"},
        std::pair{-3.0,
                  "ProcessUtils: 'it.vantul.Karno' has not terminated (timed-out after -3.0 seconds)"}));

TEST(RunningApplication, IsFoundByItsExactIdentifier) {
  FakePlatform machine;
  machine.workspace.running = {{.processIdentifier = 7, .bundleIdentifier = "it.vantul.karno"},
                               {.processIdentifier = 8, .bundleIdentifier = std::nullopt},
                               {.processIdentifier = 9, .bundleIdentifier = kIdentifier}};

  EXPECT_TRUE(KarnoProcessUtils::isApplicationRunningWithBundleID(kIdentifier));
  EXPECT_FALSE(KarnoProcessUtils::isApplicationRunningWithBundleID("it.vantul"));
}

TEST(RunningApplication, IsComparedOnceMoreWithWhatTheSystemFound) {
  FakePlatform machine;
  machine.workspace.filters = false;
  machine.workspace.running = {{.processIdentifier = 7, .bundleIdentifier = "it.vantul.karno"},
                               {.processIdentifier = 8, .bundleIdentifier = std::nullopt}};

  EXPECT_FALSE(KarnoProcessUtils::isApplicationRunningWithBundleID(kIdentifier));
}

}  // namespace
}  // namespace karno
