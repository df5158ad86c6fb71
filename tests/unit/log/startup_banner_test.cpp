#include <gmock/gmock.h>

#include "elements_are.h"
#include "fake_platform.h"
#include "log/karno_log.h"

namespace karno {
namespace {

using karno::test::ElementsAre;
using test::FakePlatform;
using test::Line;
using ::testing::Contains;

TEST(StartupBanner, HasFourLines) {
  FakePlatform machine;

  KarnoLog::manager().start();
  machine.runFor(1);

  EXPECT_THAT(
      machine.log(),
      ElementsAre(Line("STARTUP", "==================================================="),
                  Line("STARTUP", "Karno Log Started (defaults verboseLogging=0)"),
                  Line("STARTUP", "Karno Version: 3.2.1"), Line("STARTUP", "Parent Process: launchd (1)")));
}

TEST(StartupBanner, BeginsWith51EqualsSigns) {
  FakePlatform machine;

  KarnoLog::manager().start();

  EXPECT_EQ(machine.consoleMessages().at(0).message, std::string(51, '='));
}

TEST(StartupBanner, TellsThatVerboseLoggingIsOn) {
  FakePlatform machine;
  machine.withVerboseLogging(true);

  KarnoLog::manager().start();

  EXPECT_THAT(machine.consoleMessages(),
              Contains(Line("STARTUP", "Karno Log Started (defaults verboseLogging=1)")));
}

TEST(StartupBanner, NamesTheParentProcess) {
  FakePlatform machine;
  machine.processes.parent = 815;
  machine.processes.names[815] = "zsh";

  KarnoLog::manager().start();

  EXPECT_THAT(machine.consoleMessages(), Contains(Line("STARTUP", "Parent Process: zsh (815)")));
}

TEST(StartupBanner, CallsAParentWithoutANameUnknown) {
  FakePlatform machine;
  machine.processes.parent = 816;

  KarnoLog::manager().start();

  EXPECT_THAT(machine.consoleMessages(), Contains(Line("STARTUP", "Parent Process: Unknown (816)")));
}

TEST(StartupBanner, PrintsAMissingVersionAsNull) {
  FakePlatform machine;
  machine.bundles.main().info.erase("CFBundleShortVersionString");

  KarnoLog::manager().start();

  EXPECT_THAT(machine.consoleMessages(), Contains(Line("STARTUP", "Karno Version: (null)")));
}

TEST(StartupBanner, FollowsLinesThatWereLoggedBeforeTheStart) {
  FakePlatform machine;

  KarnoLog::manager().logInfo("early");
  KarnoLog::manager().start();
  KarnoLog::manager().logInfo("late");
  machine.runFor(1);

  EXPECT_THAT(machine.log(),
              ElementsAre(Line("INFO", "early"),
                          Line("STARTUP", "==================================================="),
                          Line("STARTUP", "Karno Log Started (defaults verboseLogging=0)"),
                          Line("STARTUP", "Karno Version: 3.2.1"),
                          Line("STARTUP", "Parent Process: launchd (1)"), Line("INFO", "late")));
}

}  // namespace
}  // namespace karno
