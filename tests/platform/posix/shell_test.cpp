#include "platform/shell.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/wait.h>

#include <cerrno>
#include <future>

#include "../support/forked_process.h"
#include "../support/scoped_environment.h"
#include "../support/shell_output.h"
#include "../support/standard_error_capture.h"
#include "../support/started_task.h"
#include "../support/temporary_folder.h"
#include "elements_are.h"
#include "platform/linux/machine/machine_shell.h"
#include "platform/posix/processes/child_registry.h"
#include "platform/posix/processes/popen_shell.h"
#include "platform/posix/processes/tasks.h"

namespace karno::platform {
namespace {

using karno::test::ElementsAre;
using test::ForkedProcess;
using test::outputOf;
using test::ScopedEnvironment;
using test::ShellOutput;
using test::StandardErrorCapture;
using test::StartedTask;
using test::TemporaryFolder;
using testing::IsEmpty;
using testing::MatchesRegex;

// What both systems' shells have in common, without a machine around them.
template <class NativeShell>
class ShellTest : public testing::Test {
 protected:
  TemporaryFolder folder_;
  ScopedEnvironment root_{"KARNO_MACHINE_ROOT", folder_.path()};
  NativeShell shell_;
};

using NativeShells = testing::Types<PopenShell, MachineShell>;
TYPED_TEST_SUITE(ShellTest, NativeShells);

TYPED_TEST(ShellTest, GivesWhatACommandPrintsLineByLine) {
  const ShellOutput output = outputOf(this->shell_, "printf 'one\\n\\n two \\nthree'");

  EXPECT_THAT(output.pieces, ElementsAre("one\n", "\n", " two \n", "three"));
  EXPECT_TRUE(output.isClosed);
}

TYPED_TEST(ShellTest, GivesALineOfFiveThousandBytesInTwoPieces) {
  const ShellOutput output = outputOf(this->shell_, "printf '%05000d\\nnext\\n' 0");

  EXPECT_THAT(output.pieces, ElementsAre(std::string(4095, '0'), std::string(905, '0') + "\n", "next\n"));
}

TYPED_TEST(ShellTest, GivesANewlineAfterTheLongestPieceAsAPieceOfItsOwn) {
  const ShellOutput output = outputOf(this->shell_, "printf '%04095d\\n' 0");

  EXPECT_THAT(output.pieces, ElementsAre(std::string(4095, '0'), "\n"));
}

TYPED_TEST(ShellTest, EndsAPieceAtTheFirstZeroByteInIt) {
  const ShellOutput output = outputOf(this->shell_, "printf 'ab\\0cd\\n\\0\\nef\\n'");

  EXPECT_THAT(output.pieces, ElementsAre("ab", "", "ef\n"));
}

TYPED_TEST(ShellTest, GivesNothingOfACommandThatPrintsNothing) {
  const ShellOutput output = outputOf(this->shell_, "true");

  EXPECT_THAT(output.pieces, IsEmpty());
  EXPECT_TRUE(output.isClosed);
}

TYPED_TEST(ShellTest, LetsTheShellComplainAboutACommandThatDoesNotExist) {
  const StandardErrorCapture console;

  const ShellOutput output = outputOf(this->shell_, "karno-no-such-command");

  EXPECT_THAT(output.pieces, IsEmpty());
  EXPECT_TRUE(output.isClosed);
  EXPECT_THAT(console.text(), MatchesRegex("sh: .*karno-no-such-command: .*not found\n"));
}

TYPED_TEST(ShellTest, LeavesStandardErrorToTheLauncher) {
  const StandardErrorCapture console;

  const ShellOutput output = outputOf(this->shell_, "echo printed; echo complained >&2");

  EXPECT_THAT(output.pieces, ElementsAre("printed\n"));
  EXPECT_EQ(console.text(), "complained\n");
}

TYPED_TEST(ShellTest, DoesNotCareHowACommandEnds) {
  EXPECT_TRUE(outputOf(this->shell_, "exit 3").isClosed);
  EXPECT_TRUE(outputOf(this->shell_, "kill -KILL $$").isClosed);
}

TYPED_TEST(ShellTest, PassesTheEnvironmentOn) {
  const ScopedEnvironment variable("KARNO_TEST_VARIABLE", "from the launcher");

  EXPECT_THAT(outputOf(this->shell_, "echo \"$KARNO_TEST_VARIABLE\"").pieces,
              ElementsAre("from the launcher\n"));
}

TYPED_TEST(ShellTest, RefusesWithTheReasonWhenNoPipeCanBeOpened) {
  ForkedProcess child([this] {
    const rlimit none{.rlim_cur = 3, .rlim_max = 3};
    ::setrlimit(RLIMIT_NOFILE, &none);
    const auto pipe = this->shell_.open("echo never");
    return !pipe && pipe.error() == Error::posix(EMFILE) ? 0 : 1;
  });

  EXPECT_EQ(child.exitStatus(), 0);
}

TYPED_TEST(ShellTest, SaysWhenSomebodyElseLearntOfTheEnd) {
  ForkedProcess child([this] {
    auto pipe = this->shell_.open("echo printed");
    while (pipe.value()->readPiece()) {
    }
    ::waitpid(-1, nullptr, 0);
    return pipe.value()->close() ? 1 : 0;
  });

  EXPECT_EQ(child.exitStatus(), 0);
}

TYPED_TEST(ShellTest, CollectsTheCommandWhenThePipeIsDroppedUnread) {
  ForkedProcess child([this] {
    this->shell_.open("yes 2>/dev/null");
    const bool isCollected = ::waitpid(-1, nullptr, WNOHANG) == -1 && errno == ECHILD;
    return isCollected ? 0 : 1;
  });

  EXPECT_EQ(child.exitStatus(), 0);
}

TYPED_TEST(ShellTest, HandsNoPipeToTheCommandOfAnother) {
  const std::string descriptors = "echo /proc/self/fd/*";
  const ShellOutput alone = outputOf(this->shell_, descriptors);
  const auto other = this->shell_.open("echo other");

  const ShellOutput beside = outputOf(this->shell_, descriptors);

  EXPECT_TRUE(other);
  EXPECT_EQ(beside.pieces, alone.pieces);
}

TYPED_TEST(ShellTest, RunsManyCommandsAtTheSameTime) {
  std::vector<std::future<ShellOutput>> running;
  std::vector<std::vector<std::string>> expected;

  for (int number = 0; number < 20; ++number) {
    expected.push_back({"begin " + std::to_string(number) + "\n", "end\n"});
    const std::string line = "echo begin " + std::to_string(number) + "; sleep 0.2; echo end";
    running.push_back(std::async(std::launch::async, [this, line] { return outputOf(this->shell_, line); }));
  }
  std::vector<std::vector<std::string>> printed;
  for (auto& one : running) printed.push_back(one.get().pieces);

  EXPECT_EQ(printed, expected);
}

TYPED_TEST(ShellTest, LeavesTheLaunchersOtherChildrenToThoseWhoWait) {
  PosixTasks tasks;
  StartedTask task(tasks, "/bin/sh", {"-c", "sleep 0.5; exit 5"});
  auto wait = std::async(std::launch::async, waitpidRegistered, task.result().value());

  const ShellOutput output = outputOf(this->shell_, "sleep 1; echo done");

  EXPECT_TRUE(output.isClosed);
  EXPECT_EQ(wait.get().result, task.result().value());
  EXPECT_EQ(task.waitForEnd()->terminationStatus, 5);
}

}  // namespace
}  // namespace karno::platform
