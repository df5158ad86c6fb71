#include "platform/linux/processes/process_list.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <optional>
#include <utility>

#include "../../support/bundle_program.h"
#include "../../support/scoped_environment.h"
#include "../../support/temporary_folder.h"
#include "platform/posix/clock.h"

namespace karno::platform {
namespace {

namespace fs = std::filesystem;

using test::ScopedEnvironment;
using test::SleepingProcess;
using test::TemporaryFolder;

std::optional<RunningProcess> entryOf(std::int32_t processIdentifier) {
  const auto running = LinuxProcessList().runningProcesses();
  const auto found = std::ranges::find(running, processIdentifier, &RunningProcess::processIdentifier);
  return found == running.end() ? std::nullopt : std::optional(*found);
}

// A program that sleeps, in a place of its own.
std::string makeSleeper(const TemporaryFolder& folder, const std::string& place) {
  fs::create_directories(fs::path(folder / place).parent_path());
  fs::copy_file("/bin/sleep", folder / place);
  return folder / place;
}

TEST(LinuxProcessList, TellsWhatAProcessRunsAndWhoStartedIt) {
  const TemporaryFolder folder;
  const SleepingProcess sleeper(makeSleeper(folder, "X (1).app/Contents/MacOS/X) 7 8 9"));

  const auto entry = entryOf(sleeper.identifier());

  ASSERT_TRUE(entry);
  EXPECT_EQ(entry->executablePath, folder / "X (1).app/Contents/MacOS/X) 7 8 9");
  EXPECT_EQ(entry->parentProcessIdentifier, ::getpid());
}

// The kernel counts the start in hundredths of a second.
TEST(LinuxProcessList, TellsWhenAProcessWasStarted) {
  const TemporaryFolder folder;
  const Date before = SystemClock().now() - std::chrono::milliseconds(50);
  const SleepingProcess sleeper(makeSleeper(folder, "sleeper"));
  const Date after = SystemClock().now() + std::chrono::milliseconds(50);

  const auto entry = entryOf(sleeper.identifier());

  ASSERT_TRUE(entry && entry->startDate);
  EXPECT_GE(*entry->startDate, before);
  EXPECT_LE(*entry->startDate, after);
}

TEST(LinuxProcessList, LeavesOutAProcessThatHasEnded) {
  const TemporaryFolder folder;
  const SleepingProcess sleeper(makeSleeper(folder, "sleeper"));
  ASSERT_TRUE(entryOf(sleeper.identifier()));

  sleeper.becomeZombie();

  EXPECT_FALSE(entryOf(sleeper.identifier()));
}

TEST(LinuxProcessList, LeavesOutTheProcessesOfOtherMachineRoots) {
  const TemporaryFolder folder;
  const ScopedEnvironment here("KARNO_MACHINE_ROOT", folder / "here");
  const SleepingProcess sleeper(makeSleeper(folder, "sleeper"));

  EXPECT_TRUE(entryOf(sleeper.identifier()));
  {
    const ScopedEnvironment there("KARNO_MACHINE_ROOT", folder / "there");
    EXPECT_FALSE(entryOf(sleeper.identifier()));
  }
  const ScopedEnvironment same("KARNO_MACHINE_ROOT", folder / "here/");
  EXPECT_TRUE(entryOf(sleeper.identifier()));
}

// A shell that does nothing but become itself again: it is nearly always just being loaded.
TEST(LinuxProcessList, KnowsTheMachineRootOfAProgramThatIsBeingLoaded) {
  const TemporaryFolder folder;
  const ScopedEnvironment here("KARNO_MACHINE_ROOT", folder / "here");
  fs::copy_file("/bin/sh", folder / "sh");
  const std::string again = R"(exec "$0" -c "$1" "$0" "$1")";
  const SleepingProcess shell(folder / "sh", {"-c", again, folder / "sh", again});

  for (int look = 0; look < 100; ++look) EXPECT_TRUE(entryOf(shell.identifier()));
}

TEST(LinuxProcessList, CountsAProcessWithoutARootToTheOneByDefault) {
  const TemporaryFolder folder;
  const ScopedEnvironment data("XDG_DATA_HOME", folder / "data");
  const ScopedEnvironment none("KARNO_MACHINE_ROOT", std::nullopt);
  const SleepingProcess sleeper(makeSleeper(folder, "sleeper"));

  EXPECT_TRUE(entryOf(sleeper.identifier()));
  const ScopedEnvironment byName("KARNO_MACHINE_ROOT", folder / "data/karno/machine");
  EXPECT_TRUE(entryOf(sleeper.identifier()));
}

TEST(LinuxProcessList, CountsAProcessWithoutAnyEnvironmentToTheRootByDefault) {
  const TemporaryFolder folder;
  const ScopedEnvironment none("KARNO_MACHINE_ROOT", std::nullopt);
  char* nothing[] = {nullptr};
  char** const all = std::exchange(environ, nothing);
  const SleepingProcess sleeper(makeSleeper(folder, "sleeper"));
  environ = all;

  EXPECT_TRUE(entryOf(sleeper.identifier()));
}

TEST(LinuxProcessList, KeepsThePlaceOfAProgramThatWasRemoved) {
  const TemporaryFolder folder;
  const SleepingProcess sleeper(makeSleeper(folder, "sleeper"));

  fs::remove(folder / "sleeper");

  const auto entry = entryOf(sleeper.identifier());
  ASSERT_TRUE(entry);
  EXPECT_EQ(entry->executablePath, folder / "sleeper");
}

TEST(LinuxProcessList, IsInTheOrderOfTheIdentifiers) {
  const auto running = LinuxProcessList().runningProcesses();

  EXPECT_TRUE(std::ranges::is_sorted(running, {}, &RunningProcess::processIdentifier));
  EXPECT_FALSE(running.empty());
}

}  // namespace
}  // namespace karno::platform
