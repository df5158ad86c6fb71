#include <gmock/gmock.h>

#include <cerrno>

#include "elements_are.h"
#include "fake_platform.h"
#include "system/karno_os_info_manager.h"

namespace karno {
namespace {

using karno::test::ElementsAre;
using test::FakePlatform;
using test::kSwVersLine;
using test::kUnameLine;
using test::Line;
using ::testing::IsEmpty;

const KarnoOSInfoManager& info() { return KarnoOSInfoManager::instance(); }

TEST(OSInfo, IsReadFromTheTwoCommandsInOrder) {
  FakePlatform machine;
  machine.shell.outputs[kSwVersLine] =
      "ProductName:\t\tmacOS\nProductVersion:\t\t14.2.1\nBuildVersion:\t\t23C71\n";
  machine.shell.outputs[kUnameLine] = "arm64\n";

  EXPECT_EQ(info().productName(), "macOS");
  EXPECT_EQ(info().productVersion(), "14.2.1");
  EXPECT_EQ(info().buildVersion(), "23C71");
  EXPECT_EQ(info().cpu(), "arm64");
  EXPECT_TRUE(info().isArm64());
  EXPECT_FALSE(info().isIntel64());
  EXPECT_TRUE(info().builtOSInfo());
  EXPECT_EQ(info().buildErrorMessage(), std::nullopt);
  EXPECT_THAT(machine.shell.lines(), ElementsAre(kSwVersLine, kUnameLine));
  EXPECT_THAT(machine.console(), IsEmpty());
}

TEST(OSInfo, RunsTheCommandsOnTheThreadThatAsksFirst) {
  FakePlatform machine;

  machine.onThread([] { KarnoOSInfoManager::instance(); }, "first");
  machine.runUntilIdle();

  EXPECT_EQ(machine.shell.opened.at(0).thread, "first");
  EXPECT_EQ(machine.shell.opened.at(1).thread, "first");
}

TEST(OSInfo, KnowsIntel) {
  FakePlatform machine;
  machine.shell.outputs[kUnameLine] = "x86_64\n";

  EXPECT_EQ(info().cpu(), "x86_64");
  EXPECT_TRUE(info().isIntel64());
  EXPECT_FALSE(info().isArm64());
}

TEST(OSInfo, KeepsAnotherProcessorsName) {
  FakePlatform machine;
  machine.shell.outputs[kUnameLine] = "ARM64\nsecond line\n";

  EXPECT_EQ(info().cpu(), "ARM64");
  EXPECT_FALSE(info().isArm64());
  EXPECT_FALSE(info().isIntel64());
}

TEST(OSInfo, IsGatheredOnce) {
  FakePlatform machine;
  machine.shell.outputs[kUnameLine] = "arm64\n";

  info();
  machine.shell.outputs[kUnameLine] = "x86_64\n";
  KarnoOSInfoManager::instance().buildAllInformation();

  EXPECT_EQ(info().cpu(), "arm64");
  EXPECT_EQ(machine.shell.opened.size(), 2U);
}

TEST(OSInfo, IgnoresLinesThatAreNoPairAndOtherKeys) {
  FakePlatform machine;
  machine.shell.outputs[kSwVersLine] =
      "ProductName\nProductVersion: 14:2\nProductVersionExtra: (a)\nBuildVersion: \n productversion: 9\n";

  EXPECT_EQ(info().productName(), std::nullopt);
  EXPECT_EQ(info().productVersion(), std::nullopt);
  EXPECT_EQ(info().buildVersion(), "");
}

TEST(OSInfo, KeepsTheLastValueOfAKeyThatComesTwice) {
  FakePlatform machine;
  machine.shell.outputs[kSwVersLine] = " ProductVersion : 13.0 \nProductVersion:14.0";

  EXPECT_EQ(info().productVersion(), "14.0");
}

TEST(OSInfo, TellsWhenUnamePrintsNothing) {
  FakePlatform machine;

  EXPECT_EQ(info().cpu(), std::nullopt);
  EXPECT_EQ(info().buildErrorMessage(), "Failed to retrieve any cpu info");
  EXPECT_THAT(machine.consoleMessages(),
              ElementsAre(Line("*** ERROR ***", "KarnoOSInfoManager: Failed to retrieve any cpu info")));
}

TEST(OSInfo, TakesABlankLineForTheProcessor) {
  FakePlatform machine;
  machine.shell.outputs[kUnameLine] = "\narm64\n";

  EXPECT_EQ(info().cpu(), "");
  EXPECT_EQ(info().buildErrorMessage(), std::nullopt);
}

TEST(OSInfo, TellsWhenSwVersCannotBeStartedWithItsPrefixTwice) {
  FakePlatform machine;
  machine.shell.openFailures[kSwVersLine] = EMFILE;
  machine.shell.outputs[kUnameLine] = "arm64\n";

  EXPECT_EQ(info().cpu(), "arm64");
  EXPECT_EQ(info().productVersion(), std::nullopt);
  EXPECT_EQ(
      machine.consoleMessages().back(),
      Line("*** ERROR ***",
           "KarnoOSInfoManager: KarnoOSInfoManager: Failed to build software version info. Reason: failed to "
           "run command"));
}

TEST(OSInfo, ShowsAMissingErrorAsNull) {
  FakePlatform machine;
  machine.shell.closeFailures[kSwVersLine] = true;
  machine.shell.outputs[kSwVersLine] = "ProductVersion: 14.0\n";
  machine.shell.outputs[kUnameLine] = "arm64\n";

  EXPECT_EQ(info().productVersion(), std::nullopt);
  EXPECT_EQ(
      machine.consoleMessages().back(),
      Line("*** ERROR ***",
           "KarnoOSInfoManager: KarnoOSInfoManager: Failed to build software version info. Reason: (null)"));
}

TEST(OSInfo, KeepsOnlyTheLastOfTwoFailures) {
  FakePlatform machine;
  machine.shell.openFailures[kSwVersLine] = EMFILE;
  machine.shell.closeFailures[kUnameLine] = true;

  EXPECT_EQ(info().buildErrorMessage(), "Failed to build cpu info. Reason: (null)");
  EXPECT_EQ(machine.consoleMessages().back(),
            Line("*** ERROR ***", "KarnoOSInfoManager: Failed to build cpu info. Reason: (null)"));
}

TEST(OSInfo, DoesNotRepeatAFailedGathering) {
  FakePlatform machine;
  machine.shell.openFailures = {{kSwVersLine, EMFILE}, {kUnameLine, EMFILE}};

  info();
  machine.shell.openFailures.clear();
  machine.shell.outputs[kUnameLine] = "arm64\n";
  KarnoOSInfoManager::instance().buildAllInformation();

  EXPECT_EQ(info().cpu(), std::nullopt);
  EXPECT_EQ(machine.shell.opened.size(), 2U);
}

TEST(OSInfo, LivesWithTenMegabytes) {
  FakePlatform machine;
  machine.shell.outputs[kSwVersLine] = std::string(10'000'000, 'x') + "\nProductVersion: 14.5\n";
  machine.shell.outputs[kUnameLine] = std::string(10'000'000, 'y');

  EXPECT_EQ(info().productVersion(), "14.5");
  EXPECT_EQ(info().cpu(), std::string(4095, 'y'));
}

}  // namespace
}  // namespace karno
