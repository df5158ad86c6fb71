#include "platform/posix/processes/processes.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <pthread.h>
#include <signal.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <filesystem>
#include <thread>

#include "../../support/forked_process.h"
#include "../../support/started_task.h"
#include "../../support/temporary_folder.h"
#include "platform/posix/clock.h"
#include "platform/posix/processes/tasks.h"

namespace karno::platform {
namespace {

using test::StartedTask;
using test::TemporaryFolder;

TEST(PosixProcesses, KnowsItselfAndItsParent) {
  const PosixProcesses processes;

  EXPECT_EQ(processes.currentProcessIdentifier(), ::getpid());
  EXPECT_EQ(processes.parentProcessIdentifier(), ::getppid());
}

TEST(PosixProcesses, TellsTheKernelsShortNameOfAProcess) {
  const PosixProcesses processes;

  EXPECT_EQ(processes.name(::getpid()) + "\n", test::contentOf("/proc/self/comm"));
  EXPECT_EQ(processes.name(1) + "\n", test::contentOf("/proc/1/comm"));
}

// A program can call itself what it likes.
TEST(PosixProcesses, TellsANameAsALineOfUTF8) {
  const TemporaryFolder folder;
  const std::string program = folder / "a\n\033\xFC";
  std::filesystem::copy_file("/bin/sleep", program);
  const PosixProcesses processes;
  PosixTasks tasks;
  StartedTask task(tasks, program, {"60"});

  const std::string name = processes.name(task.result().value());
  ::kill(task.result().value(), SIGKILL);

  EXPECT_EQ(name, "a\\n\\u001b\uFFFD");
}

TEST(PosixProcesses, TellsItsArgumentsWithTheProgramFirst) {
  const PosixProcesses processes;

  ASSERT_FALSE(processes.arguments().empty());
  EXPECT_THAT(test::contentOf("/proc/self/cmdline"), testing::StartsWith(processes.arguments().front()));
}

TEST(PosixProcesses, LeavesAChildAloneThatIgnoresTheSignal) {
  const TemporaryFolder folder;
  PosixProcesses processes;
  PosixTasks tasks;
  StartedTask task(tasks, "/bin/sh", {"-c", "trap '' TERM; echo > \"$0\"; exec sleep 60", folder / "deaf"});
  test::waitForFile(folder / "deaf");

  const int error = processes.terminate(task.result().value());
  const bool ended = task.waitForEnd(std::chrono::seconds(1)).has_value();
  ::kill(task.result().value(), SIGKILL);
  const auto end = task.waitForEnd();

  EXPECT_EQ(error, 0);
  EXPECT_FALSE(ended);
  ASSERT_TRUE(end);
  EXPECT_EQ(end->terminationStatus, SIGKILL);
}

TEST(PosixProcesses, TellsWhyTheSignalCannotBeSent) {
  PosixProcesses processes;
  PosixTasks tasks;
  StartedTask task(tasks, "/bin/true", {});
  ASSERT_TRUE(task.waitForEnd());

  EXPECT_EQ(processes.terminate(task.result().value()), ESRCH);
  EXPECT_EQ(processes.terminate(2'000'000'000), ESRCH);
}

// The first process of the machine belongs to root; the user who asks is made somebody else for that.
TEST(PosixProcesses, MayNotSignalTheProcessOfSomebodyElse) {
  test::ForkedProcess asker([] {
    constexpr uid_t kNobody = 65534;
    if (::geteuid() == 0 && ::setresuid(kNobody, kNobody, kNobody) != 0) return -1;
    PosixProcesses processes;
    return processes.terminate(1);
  });

  EXPECT_EQ(asker.exitStatus(), EPERM);
}

TEST(PosixProcesses, SignalsNeitherGroupsNorEverybody) {
  PosixProcesses processes;

  EXPECT_EQ(processes.terminate(0), ESRCH);
  EXPECT_EQ(processes.terminate(-1), ESRCH);
  EXPECT_EQ(processes.terminate(-::getpgrp()), ESRCH);
}

TEST(PosixProcesses, AWaitThatWasPendingReapsTheChildAndTheHandlerHearsOfItsEnd) {
  PosixProcesses processes;
  PosixTasks tasks;
  StartedTask task(tasks, "/bin/sh", {"-c", "sleep 0.5; kill -USR1 $$"});
  const std::int32_t child = task.result().value();

  const WaitResult wait = processes.waitForChild(child);
  const auto end = task.waitForEnd();

  EXPECT_EQ(wait.result, child);
  ASSERT_TRUE(end);
  EXPECT_EQ(end->terminationStatus, SIGUSR1);
  EXPECT_EQ(end->terminationReason, TerminationReason::UncaughtSignal);
  EXPECT_EQ(task.numberOfEnds(), 1U);
  EXPECT_EQ(processes.terminate(child), ESRCH);
}

TEST(PosixProcesses, WaitsForNoOtherChildThanTheOneThatIsNamed) {
  PosixProcesses processes;
  PosixTasks tasks;
  StartedTask task(tasks, "/bin/true", {});

  EXPECT_EQ(processes.waitForChild(-1).error, ECHILD);
  EXPECT_EQ(processes.waitForChild(0).error, ECHILD);
  EXPECT_EQ(task.numberOfEnds(), 1U);
}

TEST(PosixProcesses, WaitsOnThroughASignal) {
  struct sigaction action = {};
  struct sigaction previous = {};
  action.sa_handler = [](int) {};
  ::sigaction(SIGUSR2, &action, &previous);
  const pthread_t waiter = ::pthread_self();
  PosixProcesses processes;
  PosixTasks tasks;
  StartedTask task(tasks, "/bin/sleep", {"0.5"});

  std::jthread disturber([waiter] {
    std::this_thread::sleep_for(std::chrono::milliseconds(100));
    ::pthread_kill(waiter, SIGUSR2);
  });
  const WaitResult wait = processes.waitForChild(task.result().value());
  disturber.join();
  ::sigaction(SIGUSR2, &previous, nullptr);

  EXPECT_EQ(wait.result, task.result().value());
  EXPECT_EQ(wait.error, 0);
}

TEST(SystemClock, TellsTheTimeOfDay) {
  const SystemClock clock;

  const Date before = std::chrono::system_clock::now();
  const Date now = clock.now();

  EXPECT_GE(now, before);
  EXPECT_LT(secondsBetween(before, now), 5.0);
}

}  // namespace
}  // namespace karno::platform
