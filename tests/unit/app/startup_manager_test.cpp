#include "app/startup_manager.h"

#include <gmock/gmock.h>

#include <array>

#include "app/karno_embedded_app.h"
#include "elements_are.h"
#include "fake_platform.h"
#include "launcher.h"

namespace karno {
namespace {

using karno::test::ElementsAre;
using test::FakePlatform;
using test::Line;
using test::StartupRecorder;
using ::testing::IsEmpty;

// What was logged after the choice of the build.
std::vector<Line> afterTheChoice(const FakePlatform& machine) {
  std::vector<Line> lines = machine.consoleMessages();
  lines.erase(lines.begin());
  return lines;
}

// Counts what another listener than the startup manager is told.
class FuseRecorder final : public FuseManagerDelegate {
 public:
  void fuseMeetsRequirements(FuseManager&) override { ++answers; }
  void fuseNeedsToBeInstalled(FuseManager&, bool) override { ++answers; }
  int answers = 0;
};

TEST(SystemCheckForFileProvider, SucceedsOnTheCallingThreadBeforeItReturns) {
  FakePlatform machine;
  const auto delegate = std::make_shared<StartupRecorder>(machine);
  StartupManager::instance().setDelegate(delegate);

  machine.onThread(
      [&] {
        StartupManager::instance().checkSystem();
        delegate->calls.push_back("returned");
      },
      "caller");
  machine.runUntilIdle();

  EXPECT_THAT(delegate->calls, ElementsAre("checked on caller", "returned"));
  EXPECT_THAT(afterTheChoice(machine),
              ElementsAre(Line("INFO", "Startup[CHECK] Checking system for FileProvider..."),
                          Line("INFO", "Startup[CHECK] Using FileProvider")));
}

using Version = std::array<int, 3>;

class SystemCheckOnRecentVersion : public ::testing::TestWithParam<Version> {};

TEST_P(SystemCheckOnRecentVersion, UsesFileProvider) {
  FakePlatform machine;
  machine.systemVersion.running = GetParam();
  const auto delegate = std::make_shared<StartupRecorder>(machine);
  StartupManager::instance().setDelegate(delegate);

  StartupManager::instance().checkSystem();

  EXPECT_THAT(delegate->calls, ElementsAre("checked on main"));
  EXPECT_EQ(afterTheChoice(machine).at(1), Line("INFO", "Startup[CHECK] Using FileProvider"));
}

INSTANTIATE_TEST_SUITE_P(From12Point3, SystemCheckOnRecentVersion,
                         ::testing::Values(Version{12, 3, 0}, Version{12, 3, 1}, Version{13, 0, 0},
                                           Version{26, 0, 0}));

class SystemCheckOnOldVersion : public ::testing::TestWithParam<Version> {};

TEST_P(SystemCheckOnOldVersion, FailsOverToFuse) {
  FakePlatform machine;
  machine.systemVersion.running = GetParam();
  const auto delegate = std::make_shared<StartupRecorder>(machine);
  StartupManager::instance().setDelegate(delegate);

  StartupManager::instance().checkSystem();

  EXPECT_THAT(delegate->calls, IsEmpty());
  EXPECT_EQ(
      afterTheChoice(machine).at(1),
      Line("WARN",
           "Startup[CHECK] *** Cannot *** use FileProvider (O/S version < 12.3). Failing over to Fuse."));
}

INSTANTIATE_TEST_SUITE_P(Before12Point3, SystemCheckOnOldVersion,
                         ::testing::Values(Version{12, 2, 9}, Version{12, 2, 0}, Version{11, 7, 10},
                                           Version{10, 14, 6}));

TEST(SystemCheckForFileProvider, OnAnOldSystemGoesOnToFuseAndKeepsTheChosenBuild) {
  FakePlatform machine;
  machine.systemVersion.running = {12, 2, 0};

  StartupManager::instance().checkSystem();

  EXPECT_THAT(afterTheChoice(machine),
              ElementsAre(Line("INFO", "Startup[CHECK] Checking system for FileProvider..."),
                          Line("WARN",
                               "Startup[CHECK] *** Cannot *** use FileProvider (O/S version < 12.3). Failing "
                               "over to Fuse."),
                          Line("INFO", "Startup[CHECK] Checking system for Fuse...")));
  EXPECT_TRUE(KarnoEmbeddedApp::manager().useFileProvider());
  EXPECT_EQ(KarnoEmbeddedApp::manager().name(), "Karno.app");
}

TEST(SystemCheckForFuse, ReturnsAtOnce) {
  FakePlatform machine;
  machine.withFirstStartup(false);
  const auto delegate = std::make_shared<StartupRecorder>(machine);
  StartupManager::instance().setDelegate(delegate);

  StartupManager::instance().checkSystem();

  EXPECT_THAT(afterTheChoice(machine),
              ElementsAre(Line("INFO", "Startup[CHECK] Checking system for Fuse...")));
  EXPECT_THAT(delegate->calls, IsEmpty());
}

// Until then the answers of a check that runs already go to whoever asked for it.
TEST(SystemCheckForFuse, BecomesTheDelegateOfTheCheckOnlyWhenItsBlockRuns) {
  FakePlatform machine;
  machine.withFirstStartup(false).withSystem("14.5", "arm64").withFuse("4.4.1");
  const auto earlier = std::make_shared<FuseRecorder>();
  FuseManager::instance().setDelegate(earlier);

  StartupManager::instance().checkSystem();
  FuseManager::instance().checkSystemMeetsRequirements();
  const int answersBeforeItRuns = earlier->answers;
  machine.runUntilIdle();

  EXPECT_EQ(answersBeforeItRuns, 1);
  EXPECT_EQ(earlier->answers, 1);
}

TEST(SystemCheckForFuse, SucceedsOnAGlobalQueueWhenMacFUSEIsGood) {
  FakePlatform machine;
  machine.withFirstStartup(false).withSystem("14.5", "arm64").withFuse("4.4.1");
  const auto delegate = std::make_shared<StartupRecorder>(machine);
  StartupManager::instance().setDelegate(delegate);

  StartupManager::instance().checkSystem();
  machine.runUntilIdle();

  EXPECT_THAT(
      afterTheChoice(machine),
      ElementsAre(Line("INFO", "Startup[CHECK] Checking system for Fuse..."),
                  Line("INFO", "Fuse[SYSTEM] CPU: 'arm64'"), Line("INFO", "Fuse[SYSTEM] O/S Version: '14.5'"),
                  Line("INFO", "Fuse[SYSTEM] Fuse Version: '4.4.1'"),
                  Line("INFO", "FuseRequirements: System requirements have been met"),
                  Line("INFO", "Startup[FUSE] Fuse is installed")));
  EXPECT_THAT(delegate->calls, ElementsAre("checked on global(0)"));
}

TEST(SystemCheckForFuse, AsksForAnInstallationOnAGlobalQueueWithoutALineOfItsOwn) {
  FakePlatform machine;
  machine.withFirstStartup(false).withSystem("14.5", "arm64");
  const auto delegate = std::make_shared<StartupRecorder>(machine);
  StartupManager::instance().setDelegate(delegate);

  StartupManager::instance().checkSystem();
  machine.runUntilIdle();

  EXPECT_EQ(machine.consoleMessages().back(), Line("WARN", "Fuse[SYSTEM] Fuse is not installed"));
  EXPECT_THAT(delegate->calls, ElementsAre("needs install on global(0)"));
}

TEST(SystemCheckForFuse, AsksForAnUpgradeOfAnOldMacFUSE) {
  FakePlatform machine;
  machine.withFirstStartup(false).withSystem("14.5", "arm64").withFuse("4.0.4");
  const auto delegate = std::make_shared<StartupRecorder>(machine);
  StartupManager::instance().setDelegate(delegate);

  StartupManager::instance().checkSystem();
  machine.runUntilIdle();

  EXPECT_EQ(machine.consoleMessages().back(), Line("WARN", "FuseRequirements: System requirements not met"));
  EXPECT_THAT(delegate->calls, ElementsAre("needs upgrade on global(0)"));
}

TEST(SystemCheckForFileProvider, OnAnOldSystemStillLaunchesTheFileProviderBuild) {
  FakePlatform machine;
  machine.systemVersion.running = {12, 2, 0};
  machine.withEmbeddedBuilds().withSystem("12.2", "arm64").withFuse("4.0.4");
  const auto delegate = std::make_shared<StartupRecorder>(machine);
  StartupManager::instance().setDelegate(delegate);

  StartupManager::instance().checkSystem();
  machine.runUntilIdle();
  StartupManager::instance().launchKarno();
  machine.runUntilIdle();

  EXPECT_EQ(delegate->calls.at(0), "checked on global(0)");
  EXPECT_EQ(machine.tasks.launches().at(0).executablePath,
            "/Applications/Karno.app/Contents/Helpers/Karno.app/Contents/MacOS/Karno");
}

TEST(StartupManagerAccessors, GiveBackWhatTheyWereGiven) {
  FakePlatform machine;
  const auto delegate = std::make_shared<StartupRecorder>(machine);
  StartupManager& manager = StartupManager::instance();

  manager.setDelegate(delegate);
  manager.setEmbeddedKarnoProcessIdentifier(77);
  manager.setRestartingEmbeddedKarnoApp(true);
  manager.setCancelled(true);

  EXPECT_EQ(manager.delegate(), delegate);
  EXPECT_EQ(manager.embeddedKarnoProcessIdentifier(), 77);
  EXPECT_TRUE(manager.restartingEmbeddedKarnoApp());
  EXPECT_TRUE(manager.cancelled());
}

TEST(StartupManagerDelegate, IsHeldWeakly) {
  FakePlatform machine;
  auto delegate = std::make_shared<StartupRecorder>(machine);
  const std::weak_ptr<StartupRecorder> weak = delegate;
  StartupManager::instance().setDelegate(delegate);

  delegate.reset();
  StartupManager::instance().checkSystem();

  EXPECT_TRUE(weak.expired());
  EXPECT_EQ(machine.consoleMessages().back(), Line("INFO", "Startup[CHECK] Using FileProvider"));
}

}  // namespace
}  // namespace karno
