#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>
#include <fstream>

#include "expected_logs.h"
#include "hands.h"
#include "places.h"

namespace karno::test {
namespace {

namespace fs = std::filesystem;

using ::testing::Contains;
using ::testing::HasSubstr;
using ::testing::SizeIs;

constexpr std::chrono::seconds kCommandLimit{30};

CommandResult tool(const Machine& machine, const std::string& path,
                   const std::vector<std::string>& arguments = {}) {
  std::vector<std::string> command{machine.root() / path};
  command.insert(command.end(), arguments.begin(), arguments.end());
  return runCommand(command, kCommandLimit);
}

TEST(MakeMachine, SaysAsAMacWouldWhatItIs) {
  const Machine machine(builtTools(), {"--macos", "13.6.1", "--cpu", "x86_64"});

  EXPECT_EQ(tool(machine, "usr/bin/sw_vers").output,
            "ProductName:\t\tmacOS\nProductVersion:\t\t13.6.1\nBuildVersion:\t\t22G100\n");
  EXPECT_EQ(tool(machine, "usr/bin/uname", {"-m"}).output, "x86_64\n");
}

TEST(MakeMachine, ChangesOnlyWhatTheOptionsNameTheSecondTime) {
  const Machine machine(builtTools(), {"--macos", "13.6.1", "--cpu", "x86_64", "--fuse", "4.4.1"});
  const fs::path framework = machine.root() / "Library/Frameworks/macFUSE.framework/Resources/Info.plist";

  const CommandResult made = machine.make({"--macos", "14.5"});

  EXPECT_EQ(made.status, 0) << made.output;
  EXPECT_EQ(tool(machine, "usr/bin/sw_vers", {"-productVersion"}).output, "14.5\n");
  EXPECT_EQ(tool(machine, "usr/bin/uname", {"-m"}).output, "x86_64\n");
  EXPECT_TRUE(fs::exists(framework));
}

TEST(MakeMachine, TakesMacFUSEAway) {
  const Machine machine(builtTools(), {"--fuse", "4.4.1"});

  const CommandResult made = machine.make({"--fuse", "none"});

  EXPECT_EQ(made.status, 0) << made.output;
  EXPECT_FALSE(fs::exists(machine.root() / "Library/Frameworks/macFUSE.framework"));
}

TEST(MakeMachine, PutsTheBundleIntoAFolderOfTheUserWhenAsked) {
  const Machine machine(builtTools(), {"--into", "Downloads"});

  EXPECT_TRUE(fs::exists(machine.home() / "Downloads/Karno.app/Contents/MacOS/Karno"));
  EXPECT_FALSE(fs::exists(machine.bundle()));
}

TEST(MakeMachine, MountsADiskImageForABundleBelowVolumes) {
  const Machine machine(builtTools(), {"--into", "Volumes/Karno/Tools"});

  const CommandResult again =
      machine.make({"--bundle", builtTools().bundle, "--into", "Volumes/Karno/Tools"});

  EXPECT_EQ(again.status, 0) << again.output;
  EXPECT_EQ(tool(machine, "usr/bin/hdiutil", {"info"}).output,
            "image-path:\t/Users/Shared/Karno.dmg\t/dev/disk4\t/dev/disk4s1\n");
  EXPECT_EQ(tool(machine, "usr/bin/hdiutil", {"detach", "/dev/disk4s1"}).output, "\"disk4s1\" ejected.\n");
  EXPECT_FALSE(fs::exists(machine.root() / "Volumes/Karno"));
  EXPECT_EQ(tool(machine, "usr/bin/hdiutil", {"info"}).output, "");
}

TEST(MakeMachine, AsksARealAdministratorAgain) {
  const Machine machine(builtTools(), {"--administrator", "refuses"});
  const CommandResult refused = tool(machine, "usr/bin/pkexec", {"/bin/true"});

  const CommandResult made = machine.make({"--administrator", "none"});

  EXPECT_EQ(refused.status, 127);
  EXPECT_EQ(made.status, 0) << made.output;
  EXPECT_FALSE(fs::exists(machine.root() / "usr/bin/pkexec"));
}

TEST(MakeMachine, RefusesWhatNoAdministratorDoes) {
  const Machine machine(builtTools());

  const CommandResult made = machine.make({"--administrator", "sleeps"});

  EXPECT_EQ(made.status, 64);
  EXPECT_EQ(made.output,
            "make-machine: 'sleeps' is nothing an administrator does: authorises, cancels, refuses, fails or "
            "none\nTry \"make-machine --help\".\n");
}

TEST(MakeMachine, RefusesProcessorsThatNoMacHas) {
  const Machine machine(builtTools());

  const CommandResult made = machine.make({"--cpu", "ppc"});

  EXPECT_EQ(made.status, 64);
  EXPECT_EQ(made.output,
            "make-machine: 'ppc' is no processor of a Mac: arm64 or x86_64\nTry \"make-machine --help\".\n");
}

TEST(StartMachine, RefusesAMachineThatRunsAlready) {
  Machine machine(builtTools());
  machine.start();
  ASSERT_TRUE(machine.waitForMessage(kStarted)) << machine.consoleText();

  const CommandResult second = runCommand({builtTools().commands / "start", machine.root()}, kCommandLimit);

  EXPECT_EQ(second.status, 1);
  EXPECT_EQ(second.output, "start: the machine at '" + machine.root().string() + "' is running already\n");
}

TEST(StartMachine, StartsAgainAfterItWasKilledOutright) {
  Machine machine(builtTools());
  machine.start();
  ASSERT_TRUE(machine.waitForMessage(kStarted)) << machine.consoleText();
  machine.signalStart(SIGKILL);
  ASSERT_EQ(machine.waitForEnd(), 128 + SIGKILL);

  machine.startWithScript("1:user-selected-quit");

  EXPECT_EQ(machine.waitForEnd(), 0);
  EXPECT_FALSE(machine.hasProcesses());
}

TEST(StartMachine, FollowsTheLauncherThatWasOpenedInPlaceOfTheFirst) {
  Machine machine(builtTools());
  const fs::path program = machine.bundle() / "Contents/MacOS/Karno";
  machine.start();
  ASSERT_TRUE(machine.waitForMessage(kStarted)) << machine.consoleText();
  const auto first = machine.processesOf(program);
  ASSERT_THAT(first, SizeIs(1));
  const CommandResult opened = machine.in({"open", "-n", machine.bundle(), "--args", "-launch", "Karno.app"});
  ASSERT_EQ(opened.status, 0) << opened.output;
  ASSERT_TRUE(machine.waitUntil(
      [&] {
        const auto seen = machine.log();
        return std::count(seen.begin(), seen.end(), kStarted) == 2;
      },
      kCommandLimit));
  ::kill(first[0], SIGKILL);
  ASSERT_TRUE(machine.waitUntil([&] { return machine.processesOf(program).size() == 1; }, kCommandLimit));

  const CommandResult posted = machine.in({"karnoctl", "post", "user-selected-quit"});

  EXPECT_EQ(posted.status, 0) << posted.output;
  EXPECT_EQ(machine.waitForEnd(), 0);
  EXPECT_FALSE(machine.hasProcesses());
}

// Between the end of the command that opens a launcher and that launcher's start there must be no moment in
// which nothing of the session runs, however slow the machine is.
TEST(StartMachine, FollowsALauncherThatTakesLongToOpen) {
  Machine machine(builtTools(), {"--into", "Downloads"});
  const fs::path tools = machine.root() / "slow";
  fs::create_directory(tools);
  std::ofstream(tools / "setsid") << "#!/bin/sh\nsleep 1\nexec /usr/bin/setsid \"$@\"\n";
  fs::permissions(tools / "setsid", fs::perms(0755));
  machine.start({"--env", "KARNO_CLIENT_SCRIPT=1:user-selected-quit", "--env",
                 "PATH=" + tools.string() + ":/usr/bin:/bin"});
  const auto alert = findWindow(machine, kLauncherTitle);
  ASSERT_TRUE(alert) << machine.consoleText();

  pressKey(machine, *alert, "Return");

  EXPECT_EQ(machine.waitForEnd(), 0);
  EXPECT_THAT(machine.log(), Contains(kStarted)) << machine.consoleText();
  EXPECT_FALSE(machine.hasProcesses());
}

TEST(InMachine, FailsWhenTheMachineIsNotRunning) {
  const Machine machine(builtTools());

  const CommandResult result = machine.in({"true"});

  EXPECT_EQ(result.status, 1);
  EXPECT_THAT(result.output, HasSubstr("is not running (start it with start)"));
}

TEST(InMachine, EndsWithTheStatusOfItsCommand) {
  Machine machine(builtTools());
  machine.start();
  ASSERT_TRUE(machine.waitForMessage(kStarted)) << machine.consoleText();

  const CommandResult result = machine.in({"sh", "-c", "echo \"$HOME\"; exit 7"});

  EXPECT_EQ(result.status, 7);
  EXPECT_EQ(result.output, machine.home().string() + "\n");
}

}  // namespace
}  // namespace karno::test
