#include "platform/posix/processes/commands.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <csignal>

#include "../../support/temporary_folder.h"
#include "platform/posix/processes/tasks.h"

namespace karno::platform {
namespace {

using test::contentOf;
using test::TemporaryFolder;
using test::waitForFile;

TaskLaunch script(const std::string& text) {
  return {.executablePath = "/bin/sh", .arguments = {"-c", text}};
}

class PosixCommandsTest : public testing::Test {
 protected:
  PosixTasks tasks_;
  PosixCommands commands_{tasks_};
};

TEST_F(PosixCommandsTest, TellTheSignalThatEndedACommand) {
  const auto run = commands_.run(script("kill -KILL $$"));

  ASSERT_TRUE(run) << run.error().description();
  EXPECT_EQ(run.value().end.terminationStatus, SIGKILL);
  EXPECT_EQ(run.value().end.terminationReason, TerminationReason::UncaughtSignal);
}

TEST_F(PosixCommandsTest, ReadMoreThanAPipeHolds) {
  const auto run = commands_.run(script("head -c 1000000 /dev/zero | tr '\\000' x"));

  ASSERT_TRUE(run) << run.error().description();
  EXPECT_EQ(run.value().standardOutput, std::string(1'000'000, 'x'));
}

TEST_F(PosixCommandsTest, DoNotReadWithoutEnd) {
  const auto run = commands_.run(script("exec cat /dev/zero"));

  ASSERT_FALSE(run);
  EXPECT_EQ(run.error().code(), EFBIG);
}

TEST_F(PosixCommandsTest, DoNotWaitForWhatIsOnlyStarted) {
  const TemporaryFolder folder;
  const std::string gate = folder / "gate";

  const auto error = commands_.start(
      script("(while [ ! -e '" + gate + "' ]; do sleep 0.01; done; echo done >'" + folder / "end'" + ") &"));
  folder.write("gate", "");
  waitForFile(folder / "end");

  EXPECT_EQ(error, std::nullopt);
}

TEST_F(PosixCommandsTest, AreFoundWhereTheMachineHasThem) {
  PosixCommands placed(tasks_, [](const TaskLaunch& command) {
    return TaskLaunch{.executablePath = "/bin/sh", .arguments = {"-c", "echo " + command.executablePath}};
  });

  const auto run = placed.run({.executablePath = "/usr/bin/hdiutil", .arguments = {"info"}});

  ASSERT_TRUE(run) << run.error().description();
  EXPECT_EQ(run.value().standardOutput, "/usr/bin/hdiutil\n");
}

TEST_F(PosixCommandsTest, AreStartedWhereTheMachineHasThem) {
  const TemporaryFolder folder;
  PosixCommands placed(tasks_, [&](const TaskLaunch&) { return script("echo >'" + folder / "placed'"); });

  const auto error = placed.start({.executablePath = "/bin/true", .arguments = {}});
  waitForFile(folder / "placed");

  EXPECT_EQ(error, std::nullopt);
}

}  // namespace
}  // namespace karno::platform
