#include <gmock/gmock.h>

#include "app/startup_manager.h"
#include "elements_are.h"
#include "fake_platform.h"
#include "ipc/karno_process_utils.h"
#include "launcher.h"

// What a Mac does with an application that nobody looks at: it puts it to rest, and it tells it when the user
// opens it once more.
namespace karno {
namespace {

using karno::test::ElementsAre;
using test::FakePlatform;
using test::Launcher;
using ::testing::IsEmpty;

// A launcher that runs its client as process 5001.
class RunningLauncher : public ::testing::Test {
 protected:
  RunningLauncher() {
    machine.withEmbeddedBuilds().withSystem("14.5", "arm64");
    launcher.finishLaunching();
    machine.runFor(10);
  }

  FakePlatform machine;
  Launcher launcher{machine};
};

TEST_F(RunningLauncher, KeepsNothingAwakeWhileIdle) { EXPECT_THAT(machine.dispatch.activities(), IsEmpty()); }

TEST_F(RunningLauncher, IsAwakeWhileItWaitsForTheClientToQuitForARestart) {
  StartupManager::instance().restartKarno();
  machine.runFor(1);
  EXPECT_THAT(machine.dispatch.activities(), ElementsAre("Waiting for an application to terminate"));

  machine.tasks.end(5001);
  machine.runFor(5);

  EXPECT_THAT(machine.dispatch.activities(), IsEmpty());
}

TEST_F(RunningLauncher, IsAwakeWhileItWaitsForAProcessThatItEnds) {
  machine.processTable.add(77, {.executablePath = "/bin/deaf"});
  machine.processTable.programs["/bin/deaf"].ignoresTermination = true;
  machine.onThread([] { KarnoProcessUtils::terminateKarnoAppWithPid(77, "Updated"); });
  machine.runFor(1);
  EXPECT_THAT(machine.dispatch.activities(), ElementsAre("Waiting for a process to terminate"));

  machine.runFor(10);

  EXPECT_THAT(machine.dispatch.activities(), IsEmpty());
}

TEST_F(RunningLauncher, IsAwakeWhileTheLogIsFlushed) {
  AppDelegate::terminateWithReason("User selected quit");
  machine.runFor(0.05);

  EXPECT_THAT(machine.dispatch.activities(), ElementsAre("Flushing the log"));
}

TEST_F(RunningLauncher, BringsTheClientToTheFrontWhenItIsOpenedOnceMore) {
  EXPECT_FALSE(launcher.delegate().applicationShouldHandleReopen(false));

  EXPECT_THAT(machine.workspace.activated, ElementsAre(5001));
}

TEST_F(RunningLauncher, LeavesItsOwnWindowsInFrontWhenItIsOpenedOnceMore) {
  EXPECT_TRUE(launcher.delegate().applicationShouldHandleReopen(true));

  EXPECT_THAT(machine.workspace.activated, IsEmpty());
}

TEST(LauncherWithoutClient, HasNothingToBringToTheFront) {
  FakePlatform machine;
  Launcher launcher(machine);

  EXPECT_FALSE(launcher.delegate().applicationShouldHandleReopen(false));

  EXPECT_THAT(machine.workspace.activated, IsEmpty());
}

TEST(LauncherThatNeedsMacFuse, IsAwakeWhileItWaitsForIt) {
  FakePlatform machine;
  machine.withEmbeddedBuilds().withSystem("14.5", "arm64").withAdmin("USE_FILE_PROVIDER", "false");
  Launcher launcher(machine);
  launcher.finishLaunching();
  machine.runFor(5);
  EXPECT_THAT(machine.dispatch.activities(), IsEmpty());

  machine.windows.prompt.continueButton().press();
  machine.runFor(3600);

  EXPECT_THAT(machine.dispatch.activities(), ElementsAre("Waiting for macFUSE"));
}

}  // namespace
}  // namespace karno
