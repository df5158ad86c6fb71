#include <gmock/gmock.h>

#include "app/karno_embedded_app.h"
#include "app/startup_manager.h"
#include "elements_are.h"
#include "fake_platform.h"
#include "launcher.h"
#include "printing.h"

namespace karno {
namespace {

using karno::test::ElementsAre;
using test::FakePlatform;
using test::Line;
using test::StartupRecorder;
using ::testing::Contains;
using ::testing::IsEmpty;
using ::testing::Not;

const Error kRefusedAgain("NSCocoaErrorDomain", 4, {{"NSLocalizedDescription", "The file is damaged."}});

StartupManager& restarting() { return StartupManager::instance(); }

std::vector<std::string> messagesOf(const FakePlatform& machine) {
  std::vector<std::string> messages;
  for (const Line& line : machine.consoleMessages()) messages.push_back(line.message);
  return messages;
}

// A launcher whose File Provider build runs as process 5001.
class Restart : public ::testing::Test {
 protected:
  Restart() : delegate(std::make_shared<StartupRecorder>(machine)) {
    machine.withEmbeddedBuilds().withAdmin("USE_FILE_PROVIDER", "true");
    restarting().setDelegate(delegate);
    restarting().launchKarnoWithCompletion([](bool, const std::optional<Error>&) {});
    linesBefore_ = machine.consoleMessages().size();
  }

  std::vector<Line> linesOfTheRestart() const {
    const std::vector<Line> lines = machine.consoleMessages();
    return {lines.begin() + static_cast<std::ptrdiff_t>(linesBefore_), lines.end()};
  }

  void endChild() { machine.tasks.end(5001); }

  FakePlatform machine;
  std::shared_ptr<StartupRecorder> delegate;

 private:
  std::size_t linesBefore_ = 0;
};

TEST_F(Restart, SetsTheFlagBeforeItReturns) {
  restarting().restartKarno();

  EXPECT_TRUE(restarting().restartingEmbeddedKarnoApp());
  EXPECT_THAT(machine.workspace.asked, IsEmpty());
}

TEST_F(Restart, LaunchesTheApplicationAgainOnceItHasQuit) {
  restarting().restartKarno();
  machine.runFor(1.1);
  endChild();
  machine.runFor(2);

  EXPECT_THAT(machine.tasks.running(), ElementsAre(5002));
  EXPECT_EQ(restarting().embeddedKarnoProcessIdentifier(), 5002);
  EXPECT_FALSE(restarting().restartingEmbeddedKarnoApp());
  EXPECT_THAT(delegate->calls, ElementsAre("launched on global(0)"));
  EXPECT_EQ(machine.application.terminations(), 0);
  EXPECT_THAT(messagesOf(machine),
              Contains("Startup[TERMINATED] Embedded Karno.app terminated. Reason: Being restarted"));
}

TEST_F(Restart, HasClearedTheFlagBeforeTheNewLaunch) {
  bool flagThen = true;
  machine.whenLogged(Line("INFO", "Startup[LAUNCH] Launching Karno.app"),
                     [&] { flagThen = restarting().restartingEmbeddedKarnoApp(); });

  restarting().restartKarno();
  endChild();
  machine.runFor(2);

  EXPECT_THAT(delegate->calls, ElementsAre("launched on global(0)"));
  EXPECT_FALSE(flagThen);
}

TEST_F(Restart, DoesNotStartTheUpdaterAgain) {
  restarting().restartKarno();
  endChild();
  machine.runFor(2);

  EXPECT_THAT(machine.tasks.running(), ElementsAre(5002));
  EXPECT_THAT(messagesOf(machine), Not(Contains("Sparkle[START] Starting Up")));
}

TEST_F(Restart, FailsWhenTheApplicationStays) {
  restarting().restartKarno();
  machine.runFor(4.9);
  EXPECT_TRUE(restarting().restartingEmbeddedKarnoApp());
  machine.runFor(0.2);

  EXPECT_THAT(
      linesOfTheRestart(),
      ElementsAre(
          Line("INFO", "ProcessUtils: Waiting for 'it.vantul.Karno' to terminate"),
          Line("WARN", "ProcessUtils: 'it.vantul.Karno' has not terminated (timed-out after 5.0 seconds)"),
          Line("*** ERROR ***", "Startup[RESTART] Failed to restart Karno - because it has not exited")));
  EXPECT_THAT(delegate->calls, ElementsAre("launch failed on global(0)"));
  EXPECT_FALSE(restarting().restartingEmbeddedKarnoApp());
  EXPECT_THAT(machine.tasks.running(), ElementsAre(5001));
  EXPECT_THAT(machine.processes.signalled, IsEmpty());
}

TEST_F(Restart, OfEitherThatFailsClearsTheFlagOnlyAfterTheDelegateWasTold) {
  std::vector<bool> flagsThen;
  delegate->whenTold = [&] { flagsThen.push_back(restarting().restartingEmbeddedKarnoApp()); };

  restarting().restartKarno();
  machine.runFor(6);
  restarting().restartWrapper();
  machine.runFor(6);

  EXPECT_THAT(flagsThen, ElementsAre(true, true));
  EXPECT_FALSE(restarting().restartingEmbeddedKarnoApp());
}

TEST_F(Restart, TellsWhenTheNewLaunchFails) {
  machine.tasks.failNextLaunch(kRefusedAgain);

  restarting().restartKarno();
  endChild();
  machine.runFor(2);

  EXPECT_EQ(machine.consoleMessages().back(),
            Line("*** ERROR ***", "Startup[RESTART] Failed to restart Karno. Reason: The file is damaged."));
  EXPECT_THAT(delegate->calls, ElementsAre("launch failed on global(0)"));
}

TEST_F(Restart, TakesAnEndThatIsToldLateForUnplanned) {
  machine.workspace.forgotten = {5001};

  restarting().restartKarno();
  machine.runFor(0.6);
  machine.tasks.end(5001);
  machine.runFor(6);

  EXPECT_THAT(messagesOf(machine), Contains("Startup[TERMINATED] Embedded Karno.app terminated - quitting"));
  EXPECT_EQ(machine.application.terminations(), 1);
}

TEST(RestartWithoutABundle, LaunchesAtOnceAndFails) {
  FakePlatform machine;
  const auto delegate = std::make_shared<StartupRecorder>(machine);
  restarting().setDelegate(delegate);

  restarting().restartKarno();
  machine.runUntilIdle();

  EXPECT_THAT(machine.workspace.asked, IsEmpty());
  EXPECT_EQ(machine.consoleMessages().back(),
            Line("*** ERROR ***",
                 "Startup[RESTART] Failed to restart Karno. Reason: Could not find embedded Karno app"));
  EXPECT_THAT(delegate->calls, ElementsAre("launch failed on global(0)"));
}

TEST_F(Restart, OfTheLauncherOpensItAnewAndQuits) {
  restarting().restartWrapperForFuse();
  EXPECT_TRUE(restarting().restartingEmbeddedKarnoApp());
  endChild();
  machine.runFor(10);

  const auto& opened = machine.tasks.launches().at(1);
  EXPECT_EQ(opened.executablePath, "/usr/bin/open");
  EXPECT_THAT(opened.arguments,
              ElementsAre("-n", "/Applications/Karno.app", "--args", "-launch", "Karno(Fuse).app"));
  EXPECT_EQ(opened.thread, "main");
  EXPECT_THAT(linesOfTheRestart(),
              Contains(Line(
                  "INFO", "Startup[RESTART] Karno has quit - restarting wrapper (-launch Karno(Fuse).app)")));
  EXPECT_EQ(machine.log().back(), Line("INFO", "AppDelegate[TERMINATE] Reason: Restart Wrapper"));
  EXPECT_TRUE(restarting().restartingEmbeddedKarnoApp());
  EXPECT_EQ(machine.application.terminations(), 1);
  EXPECT_THAT(delegate->calls, IsEmpty());
}

TEST_F(Restart, OfTheLauncherOpensItWhenItIsItsTurnOnTheMainDispatchQueue) {
  std::size_t launchesBeforeItsTurn = 99;
  machine.dispatch.mainQueue().async([&] {
    restarting().restartWrapperForFuse();
    endChild();
    machine.runFor(6);
    launchesBeforeItsTurn = machine.tasks.launches().size();
  });

  machine.runUntilIdle();

  EXPECT_EQ(launchesBeforeItsTurn, 1U);
  EXPECT_EQ(machine.tasks.launches().size(), 2U);
}

TEST_F(Restart, OfTheLauncherOpensItThroughTheMainDispatchQueue) {
  restarting().restartWrapperForFuse();
  endChild();
  machine.runFor(1);

  EXPECT_EQ(machine.tasks.launches().size(), 2U);
  EXPECT_THAT(machine.dispatch.mainSubmissions(), ElementsAre("main queue"));
}

TEST_F(Restart, OfTheLauncherWaitsForTheBuildThatRunsNow) {
  restarting().restartWrapperForFuse();
  machine.runFor(1);

  EXPECT_EQ(machine.workspace.asked.at(0).bundleIdentifier, "it.vantul.Karno");
  EXPECT_EQ(machine.tasks.launches().size(), 1U);
}

TEST_F(Restart, OfTheLauncherFailsWhenTheApplicationStays) {
  restarting().restartWrapperForFileProvider();
  machine.runFor(6);

  EXPECT_THAT(
      linesOfTheRestart(),
      ElementsAre(
          Line("INFO", "ProcessUtils: Waiting for 'it.vantul.Karno' to terminate"),
          Line("WARN", "ProcessUtils: 'it.vantul.Karno' has not terminated (timed-out after 5.0 seconds)"),
          Line("*** ERROR ***",
               "Startup[RESTART] Failed to restart Wrapper - because Karno has not exited")));
  EXPECT_THAT(delegate->calls, ElementsAre("launch failed on global(0)"));
  EXPECT_FALSE(restarting().restartingEmbeddedKarnoApp());
  EXPECT_EQ(machine.application.terminations(), 0);
}

TEST_F(Restart, OfTheLauncherQuitsAlsoWhenItCannotBeOpened) {
  machine.tasks.failNextLaunch(kRefusedAgain);

  restarting().restartWrapperForAppEmbeddedName("Other.app");
  endChild();
  machine.runFor(10);

  EXPECT_THAT(linesOfTheRestart(), Contains(Line("*** ERROR ***",
                                                 "Startup[RESTART] Failed to restart wrapper. Reason: Error "
                                                 "Domain=NSCocoaErrorDomain Code=4 \"The file is damaged.\" "
                                                 "UserInfo={NSLocalizedDescription=The file is damaged.}")));
  EXPECT_EQ(machine.application.terminations(), 1);
}

TEST_F(Restart, OfTheLauncherKeepsTheBuild) {
  restarting().restartWrapper();
  endChild();
  machine.runFor(10);

  EXPECT_EQ(machine.tasks.launches().at(1).arguments.back(), "Karno.app");
}

class AppType : public ::testing::TestWithParam<std::pair<KarnoAppType, std::string>> {};

TEST_P(AppType, DecidesWhatTheLauncherIsRestartedWith) {
  FakePlatform machine;
  KarnoEmbeddedApp::manager().setAppType(GetParam().first);

  restarting().restartWrapper();
  machine.runFor(10);

  EXPECT_EQ(machine.tasks.launches().at(0).arguments.back(), GetParam().second);
}

INSTANTIATE_TEST_SUITE_P(RestartWrapper, AppType,
                         ::testing::Values(std::pair{KarnoAppType::FileProvider, "Karno.app"},
                                           std::pair{KarnoAppType::Fuse, "Karno(Fuse).app"},
                                           std::pair{KarnoAppType{2}, "Karno(Fuse).app"},
                                           std::pair{KarnoAppType{-1}, "Karno(Fuse).app"}));

}  // namespace
}  // namespace karno
