#include <gmock/gmock.h>

#include "elements_are.h"
#include "linux_updater_fixture.h"

namespace karno::platform::updates {
namespace {

using karno::test::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

using FailedInstallation = LinuxUpdaterTest;

TEST_F(FailedInstallation, IsToldAtTheNextStartOnceAndToTheDelegate) {
  machine.withResource("Updater.json", R"({"FAILED": "Not installed", "OK": "OK",
    "FAILED_AFTER_QUIT": "{{ name }} {{ old }} stays: {{ reason }}"})");
  installer.verdict = InstallVerdict{.version = "1.1", .reason = "The process 12 did not end."};

  updater.startUpdater();
  machine.runFor(1);
  updater.startUpdater();
  machine.runFor(1);

  EXPECT_THAT(delegate.calls, ElementsAre("aborted 4005"));
  ASSERT_THAT(machine.alerts.shown(), SizeIs(1));
  EXPECT_EQ(machine.alerts.shown()[0].messageText, "Not installed");
  EXPECT_EQ(machine.alerts.shown()[0].informativeText, "Karno 1.0 stays: The process 12 did not end.");
}

TEST_F(FailedInstallation, OfAVersionThatHasComeInAnotherWaySinceIsNotTold) {
  installer.verdict = InstallVerdict{.version = "1.0", .reason = "The installation was cut off."};

  updater.startUpdater();
  machine.runFor(1);

  EXPECT_THAT(delegate.calls, IsEmpty());
  EXPECT_THAT(machine.alerts.shown(), IsEmpty());
}

TEST_F(FailedInstallation, OfAnUnknownVersionIsTold) {
  installer.verdict = InstallVerdict{.version = "", .reason = "There is no new bundle."};

  updater.startUpdater();
  machine.runFor(1);

  EXPECT_THAT(delegate.calls, ElementsAre("aborted 4005"));
}

TEST_F(FailedInstallation, WhoseVerdictCannotBeReadIsALineInTheLogAndNoMore) {
  installer.verdict = Error::posix(27);

  updater.startUpdater();
  machine.runFor(1);

  EXPECT_THAT(machine.console(),
              ElementsAre("Updates: what the last installation left behind could not be read. Reason: " +
                          Error::posix(27).description()));
  EXPECT_THAT(delegate.calls, IsEmpty());
  EXPECT_THAT(machine.alerts.shown(), IsEmpty());
}

TEST_F(FailedInstallation, OfAKilledInstallerLeavesNoTouchFileToTheApplication) {
  delegate.touchfile = "/caches/.updated";
  machine.files.addFile("/caches/.updated", "");
  installer.verdict = InstallVerdict{.version = "1.1", .reason = "The installation was cut off."};

  updater.startUpdater();

  EXPECT_FALSE(machine.files.fileExists("/caches/.updated"));
}

TEST_F(FailedInstallation, OfAVersionThatHasComeInAnotherWaySinceLeavesTheTouchFile) {
  delegate.touchfile = "/caches/.updated";
  machine.files.addFile("/caches/.updated", "");
  installer.verdict = InstallVerdict{.version = "1.0", .reason = "The installation was cut off."};

  updater.startUpdater();

  EXPECT_TRUE(machine.files.fileExists("/caches/.updated"));
}

TEST_F(FailedInstallation, TakesTheTouchFileThatTheDelegateNames) {
  delegate.touchfile = "/caches/.updated";

  check();
  answer(kUserUpdateChoiceInstall);

  EXPECT_THAT(installer.touchfiles, ElementsAre("/caches/.updated"));
}

}  // namespace
}  // namespace karno::platform::updates
