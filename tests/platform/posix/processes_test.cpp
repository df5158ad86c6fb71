#include "platform/posix/processes.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include "../support/temporary_folder.h"
#include "platform/posix/clock.h"

namespace karno::platform {
namespace {

TEST(PosixProcesses, KnowsItselfAndItsParent) {
  const PosixProcesses processes;

  EXPECT_EQ(processes.currentProcessIdentifier(), ::getpid());
  EXPECT_EQ(processes.parentProcessIdentifier(), ::getppid());
}

TEST(PosixProcesses, TellsTheKernelsShortNameOfAProcess) {
  const PosixProcesses processes;

  EXPECT_EQ(processes.name(::getpid()) + "\n", test::contentOf("/proc/self/comm"));
}

TEST(PosixProcesses, NamesNoProcessThatIsNotThere) {
  const PosixProcesses processes;

  EXPECT_EQ(processes.name(0), "");
  EXPECT_EQ(processes.name(-1), "");
  EXPECT_EQ(processes.name(2'000'000'000), "");
}

TEST(PosixProcesses, TellsItsArgumentsWithTheProgramFirst) {
  const PosixProcesses processes;

  ASSERT_FALSE(processes.arguments().empty());
  EXPECT_THAT(test::contentOf("/proc/self/cmdline"), testing::StartsWith(processes.arguments().front()));
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
