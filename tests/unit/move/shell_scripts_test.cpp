#include "move/shell_scripts.h"

#include <gmock/gmock.h>

#include "elements_are.h"
#include "move/running_copy.h"
#include "moving_machine.h"

namespace karno {
namespace {

using karno::test::ElementsAre;
using test::MovingMachine;
using ::testing::IsEmpty;

TEST(ShellQuotedString, StandsInSingleQuotes) {
  EXPECT_EQ(shellQuotedString("/Applications/Karno.app"), "'/Applications/Karno.app'");
  EXPECT_EQ(shellQuotedString(""), "''");
}

TEST(ShellQuotedString, LeavesASingleQuoteOutsideOfThem) {
  EXPECT_EQ(shellQuotedString("Anna's Karno.app"), R"('Anna'\''s Karno.app')");
  EXPECT_EQ(shellQuotedString("''"), R"(''\'''\''')");
}

TEST(ShellQuotedString, LeavesEverythingElseAlone) {
  EXPECT_EQ(shellQuotedString("a \"b\" $c `d` \\e\nü"), "'a \"b\" $c `d` \\e\nü'");
}

TEST(Relaunch, WaitsForThisProcessThenOpensTheCopyWithoutItsQuarantine) {
  const MovingMachine machine;

  relaunchFromPath("/Applications/Karno.app");

  EXPECT_THAT(
      machine.commands.started,
      ElementsAre(
          "/bin/sh|-c|(while /bin/kill -0 4242 >&/dev/null; do /bin/sleep 0.1; done; /usr/bin/xattr -d -r "
          "com.apple.quarantine '/Applications/Karno.app'; /usr/bin/open '/Applications/Karno.app') &"));
  EXPECT_THAT(machine.commands.ran, IsEmpty());
}

TEST(Relaunch, TakesTheQuarantineOffTheFolderAloneOnASystemThatIsTooOld) {
  MovingMachine machine;
  machine.systemVersion.appKit = 949.9;

  relaunchFromPath("/Applications/It's Karno.app");

  EXPECT_THAT(machine.commands.started,
              ElementsAre(R"(/bin/sh|-c|(while /bin/kill -0 4242 >&/dev/null; do /bin/sleep 0.1; done; )"
                          R"(/usr/bin/xattr -d com.apple.quarantine '/Applications/It'\''s Karno.app'; )"
                          R"(/usr/bin/open '/Applications/It'\''s Karno.app') &)"));
}

TEST(DetachDiskImage, HappensFiveSecondsLater) {
  const MovingMachine machine;

  detachDiskImageLater("/dev/disk4s1");

  EXPECT_THAT(machine.commands.started,
              ElementsAre("/bin/sh|-c|(/bin/sleep 5 && /usr/bin/hdiutil detach '/dev/disk4s1') &"));
}

TEST(AScript, ThatCannotBeStartedIsTold) {
  MovingMachine machine;
  machine.commands.startFailure = platform::Error::posix(35);

  detachDiskImageLater("/dev/disk4s1");

  EXPECT_THAT(machine.console(), ElementsAre(platform::Error::posix(35).localizedDescription()));
}

TEST(IsApplicationAtPathRunning, LooksAtTheBundlesOfRunningApplications) {
  MovingMachine machine;
  machine.processTable.addApplication("/System/Library/CoreServices/Finder.app");
  machine.processTable.addApplication("/Applications/Karno.app/");

  EXPECT_TRUE(isApplicationAtPathRunning("/Applications/Karno.app"));
  EXPECT_TRUE(isApplicationAtPathRunning("/Applications/Karno.app/"));
  EXPECT_FALSE(isApplicationAtPathRunning("/Applications/Karno"));
  EXPECT_FALSE(isApplicationAtPathRunning("/Users/tester/Applications/Karno.app"));
  EXPECT_THAT(machine.commands.ran, IsEmpty());
}

constexpr const char* kSearchLine =
    R"(/bin/sh|-c|/bin/ps ax -o comm | /usr/bin/grep '/Applications/It'\''s.app'/ | /usr/bin/grep -v grep >/dev/null)";

TEST(IsApplicationAtPathRunning, AsksAShellOnASystemThatIsTooOld) {
  MovingMachine machine;
  machine.systemVersion.appKit = 949;

  EXPECT_TRUE(isApplicationAtPathRunning("/Applications/It's.app/"));
  EXPECT_THAT(machine.commands.ran, ElementsAre(kSearchLine));
}

TEST(IsApplicationAtPathRunning, IsFalseWhenTheShellFindsNothing) {
  MovingMachine machine;
  machine.systemVersion.appKit = 949;
  machine.processTable.addApplication("/Applications/It's.app");
  machine.commands.answers.insert_or_assign(
      kSearchLine, platform::CommandEnd{.end = {.terminationStatus = 1}, .standardOutput = ""});

  EXPECT_FALSE(isApplicationAtPathRunning("/Applications/It's.app"));
}

// As a search that went wrong ends.
TEST(IsApplicationAtPathRunning, IsFalseWhenTheSearchCannotBeMade) {
  MovingMachine machine;
  machine.systemVersion.appKit = 949;
  machine.commands.answers.insert_or_assign(
      kSearchLine, platform::CommandEnd{.end = {.terminationStatus = 2}, .standardOutput = ""});

  EXPECT_FALSE(isApplicationAtPathRunning("/Applications/It's.app"));
}

TEST(IsApplicationAtPathRunning, IsFalseWhenThereIsNoShell) {
  MovingMachine machine;
  machine.systemVersion.appKit = 949;
  machine.commands.answers.insert_or_assign(kSearchLine, platform::Error::posix(2));

  EXPECT_FALSE(isApplicationAtPathRunning("/Applications/It's.app"));
}

}  // namespace
}  // namespace karno
