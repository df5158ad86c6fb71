#include "platform/posix/processes/tasks.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <filesystem>
#include <future>
#include <thread>

#include "../../support/scoped_environment.h"
#include "../../support/standard_error_capture.h"
#include "../../support/started_task.h"
#include "../../support/temporary_folder.h"
#include "platform/posix/processes/child_registry.h"
#include "platform/posix/scoped_descriptor.h"

namespace karno::platform {
namespace {

using test::ScopedEnvironment;
using test::StandardErrorCapture;
using test::StartedTask;
using test::TemporaryFolder;

StartedTask shell(PosixTasks& tasks, const std::string& command) {
  return StartedTask(tasks, "/bin/sh", {"-c", command});
}

void waitUntilGone(std::int32_t processIdentifier) {
  while (::kill(processIdentifier, 0) == 0) std::this_thread::yield();
}

TEST(PosixTasks, CallsTheHandlerOnceForEachOfManyShortChildren) {
  PosixTasks tasks;
  std::vector<std::unique_ptr<StartedTask>> started;

  for (int count = 0; count < 100; ++count) {
    started.push_back(std::make_unique<StartedTask>(tasks, "/bin/true", std::vector<std::string>{}));
  }

  for (const auto& task : started) EXPECT_EQ(task->numberOfEnds(std::chrono::milliseconds(1)), 1U);
}

TEST(PosixTasks, ReapsTheChild) {
  PosixTasks tasks;

  StartedTask task = shell(tasks, "exit 0");
  ASSERT_TRUE(task.waitForEnd());

  EXPECT_EQ(::kill(task.result().value(), 0), -1);
  EXPECT_EQ(errno, ESRCH);
}

TEST(PosixTasks, GivesTheChildAProcessGroupOfItsOwn) {
  PosixTasks tasks;
  StartedTask task = shell(tasks, "exec sleep 600");
  const std::int32_t child = task.result().value();

  const pid_t group = ::getpgid(child);
  ::kill(child, SIGKILL);

  EXPECT_EQ(group, child);
}

TEST(PosixTasks, LeavesTheChildToAWaitThatWasPending) {
  PosixTasks tasks;
  StartedTask task = shell(tasks, "sleep 1; exit 5");
  const std::int32_t child = task.result().value();

  const WaitResult wait = waitpidRegistered(child);
  const auto end = task.waitForEnd();

  EXPECT_EQ(wait.result, child);
  ASSERT_TRUE(end);
  EXPECT_EQ(end->terminationStatus, 5);
  EXPECT_EQ(task.numberOfEnds(), 1U);
}

TEST(PosixTasks, LeavesEachOfManyChildrenToTheWaitThatWasPending) {
  PosixTasks tasks;
  std::vector<std::unique_ptr<StartedTask>> children;
  std::vector<std::future<WaitResult>> waits;

  for (int count = 0; count < 20; ++count) {
    children.push_back(std::make_unique<StartedTask>(shell(tasks, "sleep 2; exit 5")));
    waits.push_back(std::async(std::launch::async, waitpidRegistered, children.back()->result().value()));
  }

  for (std::size_t index = 0; index < waits.size(); ++index) {
    EXPECT_EQ(waits[index].get().result, children[index]->result().value());
    EXPECT_EQ(children[index]->waitForEnd()->terminationStatus, 5);
  }
}

TEST(PosixTasks, WaitingForAChildThatWasReapedFailsAtOnce) {
  PosixTasks tasks;
  StartedTask task = shell(tasks, "exit 0");
  ASSERT_TRUE(task.waitForEnd());

  const WaitResult wait = waitpidRegistered(task.result().value());

  EXPECT_EQ(wait.result, -1);
  EXPECT_EQ(wait.error, ECHILD);
}

TEST(PosixTasks, StillTellsOfAChildThatSomebodyElseReaped) {
  PosixTasks tasks;
  StartedTask task = shell(tasks, "sleep 0.2; exit 9");

  ::waitpid(task.result().value(), nullptr, 0);

  EXPECT_EQ(task.numberOfEnds(), 1U);
}

TEST(PosixTasks, RefusesAWordWithAZeroByteInIt) {
  PosixTasks tasks;

  StartedTask task(tasks, "/bin/true", {std::string("a\0b", 3)});

  ASSERT_FALSE(task.result());
  EXPECT_EQ(task.result().error(), Error::posix(EINVAL));
}

TEST(PosixTasks, HasRoomAgainForEveryChildThatHasEnded) {
  PosixTasks tasks;
  int started = 0;

  for (int count = 0; count <= kRunningChildrenMax; ++count) {
    StartedTask task(tasks, "/bin/true", {});
    if (task.result() && task.waitForEnd()) ++started;
  }

  EXPECT_EQ(started, kRunningChildrenMax + 1);
}

TEST(PosixTasks, RefusesAFileWithoutExecutePermission) {
  const TemporaryFolder folder;
  PosixTasks tasks;

  StartedTask task(tasks, folder.write("plain", "#!/bin/sh\n"), {});

  ASSERT_FALSE(task.result());
  EXPECT_EQ(task.result().error(), Error::posix(EACCES));
}

TEST(PosixTasks, RefusesAFileThatIsNoProgram) {
  const TemporaryFolder folder;
  const std::string path = folder.write("text", "just some words\n");
  std::filesystem::permissions(path, std::filesystem::perms::all);
  PosixTasks tasks;

  StartedTask task(tasks, path, {});

  ASSERT_FALSE(task.result());
  EXPECT_EQ(task.result().error(), Error::posix(ENOEXEC));
}

TEST(PosixTasks, PassesEachArgumentAsOneWord) {
  const TemporaryFolder folder;
  PosixTasks tasks;

  StartedTask task(tasks, "/bin/sh",
                   {"-c", "printf '<%s>' \"$@\" > \"$0\"", folder / "out", "--parent 4711", "", "ä*"});
  ASSERT_TRUE(task.waitForEnd());

  EXPECT_EQ(test::contentOf(folder / "out"), "<--parent 4711><><ä*>");
}

TEST(PosixTasks, PassesTheEnvironmentAndTheWorkingFolder) {
  const TemporaryFolder folder;
  const ScopedEnvironment environment("KARNO_TEST_WORD", "blue");
  PosixTasks tasks;

  StartedTask task(tasks, "/bin/sh", {"-c", "echo $KARNO_TEST_WORD $(pwd) > \"$0\"", folder / "out"});
  ASSERT_TRUE(task.waitForEnd());

  EXPECT_EQ(test::contentOf(folder / "out"), "blue " + std::filesystem::current_path().string() + "\n");
}

TEST(PosixTasks, PassesNoDescriptorButTheStandardStreams) {
  constexpr int kNumber = 57;
  const ScopedDescriptor file(::open("/dev/null", O_RDONLY));
  const ScopedDescriptor inheritable(::fcntl(file.get(), F_DUPFD, kNumber));
  ASSERT_EQ(inheritable.get(), kNumber);
  PosixTasks tasks;

  StartedTask others(tasks, "/bin/sh", {"-c", "test -e /proc/$$/fd/3 -o -e /proc/$$/fd/57"});
  StartedTask standard(tasks, "/bin/sh",
                       {"-c", "test -e /proc/$$/fd/0 -a -e /proc/$$/fd/1 -a -e /proc/$$/fd/2"});
  const auto othersEnd = others.waitForEnd();
  const auto standardEnd = standard.waitForEnd();

  ASSERT_TRUE(othersEnd && standardEnd);
  EXPECT_EQ(othersEnd->terminationStatus, 1);
  EXPECT_EQ(standardEnd->terminationStatus, 0);
}

TEST(PosixTasks, GivesTheChildDefaultSignalsAndAnEmptyMask) {
  const TemporaryFolder folder;
  sigset_t blocked;
  sigset_t before;
  sigemptyset(&blocked);
  sigaddset(&blocked, SIGUSR1);
  ::pthread_sigmask(SIG_BLOCK, &blocked, &before);
  PosixTasks tasks;

  StartedTask task(tasks, "/bin/bash",
                   {"-c", "grep -E '^Sig(Blk|Ign)' /proc/self/status > \"$0\"", folder / "out"});
  ASSERT_TRUE(task.waitForEnd());
  ::pthread_sigmask(SIG_SETMASK, &before, nullptr);

  // Signals 32 and 33 are glibc's own, which posix_spawn() leaves ignored.
  EXPECT_THAT(test::contentOf(folder / "out"),
              testing::MatchesRegex("SigBlk:\t0000000000000000\nSigIgn:\t0000000[01][08]0000000\n"));
}

TEST(PosixTasks, ReportsAHandlerThatThrows) {
  const StandardErrorCapture console;
  PosixTasks tasks;
  std::atomic<bool> called = false;

  const auto child = tasks.launch({.executablePath = "/bin/true", .arguments = {}}, [&](const TaskEnd&) {
    called = true;
    throw std::runtime_error("no luck");
  });
  ASSERT_TRUE(child);
  waitUntilGone(child.value());
  while (console.text().empty()) std::this_thread::yield();

  EXPECT_TRUE(called);
  EXPECT_EQ(console.text(), "Tasks: a block threw an exception: no luck\n");
}

TEST(PosixTasks, ReportsAHandlerThatThrowsWhatIsNoException) {
  const StandardErrorCapture console;
  PosixTasks tasks;

  const auto child =
      tasks.launch({.executablePath = "/bin/true", .arguments = {}}, [](const TaskEnd&) { throw 7; });
  ASSERT_TRUE(child);
  waitUntilGone(child.value());
  while (console.text().empty()) std::this_thread::yield();

  EXPECT_EQ(console.text(), "Tasks: a block threw an exception\n");
}

}  // namespace
}  // namespace karno::platform
