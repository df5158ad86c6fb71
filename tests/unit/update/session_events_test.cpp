#include <gmock/gmock.h>

#include <cerrno>
#include <csignal>

#include "app/startup_manager.h"
#include "elements_are.h"
#include "fake_platform.h"
#include "launcher.h"
#include "printing.h"
#include "update/karno_sparkle_manager.h"

namespace karno {
namespace {

using karno::test::ElementsAre;
using platform::ActivationPolicy;
using platform::AppcastItem;
using platform::Error;
using test::FakePlatform;
using test::Launcher;
using test::Line;
using ::testing::IsEmpty;

constexpr const char* kTouchFile = "/Users/tester/Library/Caches/Karno/cache.noindex/.karnoUpdated";
const AppcastItem kItem{.title = "Karno 1.1", .displayVersionString = "1.1.0"};
const Error kError("SUSparkleErrorDomain", 2001, {{"NSLocalizedDescription", "The line broke."}});
constexpr const char* kErrorText =
    "Error Domain=SUSparkleErrorDomain Code=2001 \"The line broke.\" "
    "UserInfo={NSLocalizedDescription=The line broke.}";

// A machine of the File Provider build whose updater is at work.
struct Session : ::testing::Test {
  Session() {
    machine.withFirstStartup(false).withUserSetting("useFileProvider", true).withEmbeddedBuilds();
    KarnoSparkleManager::instance().isUpdateInProgress();
  }

  platform::UpdaterDelegate& delegate() { return machine.updater.delegate(); }
  platform::Updater& updater() { return machine.updater.handle(); }
  std::vector<Line> log() const { return machine.consoleMessages(); }

  FakePlatform machine;
};

TEST_F(Session, AsksForTheFeedInUse) {
  machine.files.addFile("/Users/tester/KARNOUPGRADE.debug", "https://a/b");

  EXPECT_EQ(delegate().feedURLStringForUpdater(updater()), "https://a/b");
  EXPECT_THAT(log(), IsEmpty());
}

TEST_F(Session, NamesTheFeedThatWasDownloaded) {
  delegate().didFinishLoadingAppcast(updater());

  EXPECT_THAT(log(), ElementsAre(Line("INFO",
                                      "Sparkle[UPDATE] Downloaded appcast "
                                      "(https://updates.vantul.it/updates/macos/appcast.eddsa.xml)")));
  EXPECT_THAT(machine.application.policies, IsEmpty());
}

TEST_F(Session, AsksForAttentionUntilTheLauncherIsActivatedWhenAnUpdateIsFound) {
  delegate().didFindValidUpdate(updater(), kItem);

  EXPECT_THAT(log(), ElementsAre(Line("INFO", "Sparkle[UPDATE] Found: Karno 1.1 (1.1.0)")));
  EXPECT_THAT(machine.application.attentionRequests, ElementsAre(platform::AttentionRequest::Critical));
  EXPECT_THAT(machine.application.policies, IsEmpty());
}

TEST_F(Session, RemembersWhetherTheLastCheckFoundAnUpdate) {
  const KarnoSparkleManager& manager = KarnoSparkleManager::instance();
  std::vector<bool> found = {manager.foundKarnoUpdate()};

  delegate().didFindValidUpdate(updater(), kItem);
  found.push_back(manager.foundKarnoUpdate());
  delegate().didFinishLoadingAppcast(updater());
  found.push_back(manager.foundKarnoUpdate());
  delegate().didFindValidUpdate(updater(), kItem);
  delegate().updaterDidNotFindUpdate(updater(), kError);
  found.push_back(manager.foundKarnoUpdate());

  EXPECT_EQ(found, (std::vector{false, true, false, false}));
}

TEST_F(Session, PrintsAMissingTitleAsNull) {
  const AppcastItem untitled{.title = std::nullopt, .displayVersionString = "1.1.0"};

  delegate().didFindValidUpdate(updater(), untitled);
  delegate().willDownloadUpdate(updater(), untitled, "https://a/b.zip");
  delegate().willInstallUpdate(updater(), untitled);

  EXPECT_THAT(log(), ElementsAre(Line("INFO", "Sparkle[UPDATE] Found: (null) (1.1.0)"),
                                 Line("INFO", "Sparkle[UPDATE] Downloading (null) (1.1.0) - https://a/b.zip"),
                                 Line("INFO", "Sparkle[UPDATE] About to install: (null) (1.1.0)")));
}

struct Choice {
  long value;
  const char* line;
  std::vector<ActivationPolicy> policies;
};

class ChoiceOfTheUser : public Session, public ::testing::WithParamInterface<Choice> {};

TEST_P(ChoiceOfTheUser, IsNamedAndSendsTheLauncherToTheBackgroundUnlessItInstalls) {
  delegate().userDidMakeChoice(updater(), GetParam().value, kItem);

  EXPECT_THAT(log(), ElementsAre(Line("INFO", GetParam().line)));
  EXPECT_EQ(machine.application.policies, GetParam().policies);
}

INSTANTIATE_TEST_SUITE_P(
    Choices, ChoiceOfTheUser,
    ::testing::Values(Choice{0, "Sparkle[UPDATE] User decided to skip update", {ActivationPolicy::Accessory}},
                      Choice{1, "Sparkle[UPDATE] User decided to install update", {}},
                      Choice{
                          2, "Sparkle[UPDATE] User decided to dismiss update", {ActivationPolicy::Accessory}},
                      Choice{7,
                             "Sparkle[UPDATE] User decided to 'unknown decision' (7) update",
                             {ActivationPolicy::Accessory}},
                      Choice{-1,
                             "Sparkle[UPDATE] User decided to 'unknown decision' (-1) update",
                             {ActivationPolicy::Accessory}}));

TEST_F(Session, ThatFindsNothingLooksAtMacFUSEAndThenGoesToTheBackground) {
  delegate().updaterDidNotFindUpdate(updater(), kError);

  EXPECT_THAT(
      log(),
      ElementsAre(Line("INFO", std::string("Sparkle[UPDATE] No update found. Reason: ") + kErrorText),
                  Line("INFO", "Sparkle[UPDATE] Checking Fuse for updates following automated update check"),
                  Line("INFO", "Fuse[START] Not checking for a Fuse update - as we use a FileProvider")));
  EXPECT_THAT(machine.application.policies, ElementsAre(ActivationPolicy::Accessory));
}

TEST_F(Session, ThatFindsNothingStaysInFrontUntilTheUserHasAnsweredForMacFUSE) {
  machine.withUserSetting("useFileProvider", false).withFuse("4.4.1");
  machine.network.bodies["https://api.github.com/repos/macfuse/macfuse/releases/latest"] =
      R"({"name": "macFUSE 4.5.0"})";
  std::vector<ActivationPolicy> policiesWhileAsked = {ActivationPolicy::Regular};
  machine.alerts.answerNext(platform::kAlertSecondButtonReturn,
                            [&] { policiesWhileAsked = machine.application.policies; });

  delegate().updaterDidNotFindUpdate(updater(), kError);
  machine.runUntilIdle();

  EXPECT_THAT(policiesWhileAsked, IsEmpty());
  EXPECT_THAT(machine.application.policies, ElementsAre(ActivationPolicy::Accessory));
}

TEST_F(Session, TellsOfTheDownload) {
  delegate().willDownloadUpdate(updater(), kItem, "https://a/Karno%201.1.zip");
  delegate().didDownloadUpdate(updater(), kItem);

  EXPECT_THAT(
      log(),
      ElementsAre(Line("INFO", "Sparkle[UPDATE] Downloading Karno 1.1 (1.1.0) - https://a/Karno%201.1.zip"),
                  Line("INFO", "Sparkle[UPDATE] Downloaded update")));
  EXPECT_THAT(machine.application.policies, IsEmpty());
}

TEST_F(Session, TellsOfAFailedAndOfACancelledDownload) {
  delegate().failedToDownloadUpdate(updater(), kItem, kError);
  delegate().userDidCancelDownload(updater());

  EXPECT_THAT(
      log(), ElementsAre(Line("*** ERROR ***",
                              std::string("Sparkle[UPDATE] Failed to download update. Error: ") + kErrorText),
                         Line("WARN", "Sparkle[UPDATE] User cancelled download")));
  EXPECT_THAT(machine.application.policies, IsEmpty());
}

TEST_F(Session, ComesToTheFrontForTheExtraction) {
  delegate().willExtractUpdate(updater(), kItem);
  delegate().didExtractUpdate(updater(), kItem);
  delegate().willInstallUpdate(updater(), kItem);

  EXPECT_THAT(log(), ElementsAre(Line("INFO", "Sparkle[UPDATE] Extracting update"),
                                 Line("INFO", "Sparkle[UPDATE] Extracted update"),
                                 Line("INFO", "Sparkle[UPDATE] About to install: Karno 1.1 (1.1.0)")));
  EXPECT_THAT(machine.application.policies, ElementsAre(ActivationPolicy::Regular));
}

TEST_F(Session, GoesToTheBackgroundWhenItIsAborted) {
  delegate().didAbortWithError(updater(), kError);

  EXPECT_THAT(log(),
              ElementsAre(Line("WARN", std::string("Sparkle[ABORT] Update Aborted (") + kErrorText + ")")));
  EXPECT_THAT(machine.application.policies, ElementsAre(ActivationPolicy::Accessory));
}

const Line kRelaunching("INFO", "Sparkle[UPDATE] Relaunching app");
const Line kCreating("INFO", "Sparkle[INSTALL] Creating 'updated' touchfile");
const Line kComplete("INFO", "AppDelegate[TERMINATE] Reason: Update complete");

TEST_F(Session, AtTheInstallationLeavesTheTouchFileStopsTheChildAndQuitsInThatOrder) {
  Launcher launcher(machine);
  machine.files.addDirectory("/Users/tester/Library/Caches/Karno/cache.noindex");
  StartupManager::instance().launchKarnoWithCompletion([](bool, const auto&) {});
  machine.updater.inSession = true;
  const std::size_t before = log().size();

  const bool relaunches = delegate().updaterShouldRelaunchApplication(updater());
  const int terminationsAtReturn = machine.application.terminations();
  machine.runFor(6);

  EXPECT_FALSE(relaunches);
  EXPECT_EQ(terminationsAtReturn, 0);
  EXPECT_EQ(machine.application.terminations(), 1);
  EXPECT_TRUE(machine.files.fileExists(kTouchFile));
  EXPECT_THAT(machine.processes.signalled, ElementsAre(5001));
  std::vector<Line> lines = log();
  lines.erase(lines.begin(), lines.begin() + static_cast<std::ptrdiff_t>(before));
  // Another thread tells of the child's end, before or after it has been waited for.
  EXPECT_EQ(
      std::erase_if(lines, [](const Line& line) { return line.message.starts_with("Startup[TERMINATED]"); }),
      2U);
  EXPECT_THAT(lines, ElementsAre(kRelaunching, kCreating,
                                 Line("WARN", "ProcessUtils[TERMINATE] Process 5001 terminated successfully"),
                                 kComplete, Line("INFO", "AppDelegate:: Terminating")));
}

TEST_F(Session, AtTheInstallationWaitsTenSecondsForAChildThatStaysAndQuitsAllTheSame) {
  Launcher launcher(machine);
  StartupManager::instance().launchKarnoWithCompletion([](bool, const auto&) {});
  machine.processTable.programs[machine.tasks.launches().back().executablePath].ignoresTermination = true;
  const double began = machine.seconds();

  delegate().updaterShouldRelaunchApplication(updater());
  const double waited = machine.seconds() - began;
  machine.runFor(6);

  EXPECT_NEAR(waited, 10, 0.01);
  EXPECT_EQ(machine.application.terminations(), 1);
}

TEST_F(Session, AtTheInstallationAfterAFailedLaunchQuitsAllTheSame) {
  Launcher launcher(machine);
  machine.tasks.failNextLaunch(Error::posix(ENOENT));
  StartupManager::instance().launchKarnoWithCompletion([](bool, const auto&) {});
  const std::size_t before = log().size();

  delegate().updaterShouldRelaunchApplication(updater());
  machine.runFor(6);

  const std::vector<Line> lines = log();
  EXPECT_THAT(
      std::vector<Line>(lines.begin() + static_cast<std::ptrdiff_t>(before), lines.end()),
      ElementsAre(
          kRelaunching, kCreating,
          Line("*** ERROR ***",
               std::string("Sparkle[INSTALL] Failed to create 'updated' touchfile (") + kTouchFile + ")"),
          Line("WARN", "ProcessUtils[TERMINATE] Refusing to terminate Karno (pid:-1) - invalid pid"),
          kComplete, Line("INFO", "AppDelegate:: Terminating")));
  EXPECT_THAT(machine.processes.signalled, IsEmpty());
}

}  // namespace
}  // namespace karno
