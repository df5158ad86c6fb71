#include <gmock/gmock.h>

#include <cerrno>

#include "elements_are.h"
#include "fake_platform.h"
#include "printing.h"
#include "update/karno_sparkle_manager.h"

namespace karno {
namespace {

using karno::test::ElementsAre;
using platform::Error;
using platform::Value;
using test::FakePlatform;
using test::Line;
using ::testing::Contains;
using ::testing::IsEmpty;

constexpr const char* kCache = "/Users/tester/Library/Caches/Karno/cache.noindex";
constexpr const char* kTouchFileOfTheCache = "/Users/tester/Library/Caches/Karno/cache.noindex/.karnoUpdated";
constexpr const char* kStringsOfTheStart =
    R"({"UPDATE": "Update", "MESSAGE_FUSE_UPGRADE_REQUIRED": "macFUSE is old.",
  "WHAT_WOULD_YOU_LIKE_TO_DO": "What now?", "CONTINUE": "Go on", "NOT_NOW": "Later"})";

const Line kStartingUp("INFO", "Sparkle[START] Starting Up");
const Line kCheckingFuse("INFO", "Sparkle[START] Checking Fuse following a Karno update");
const Line kNoFuseCheck("INFO", "Fuse[START] Not checking for a Fuse update - as we use a FileProvider");

KarnoSparkleManager& sparkleManager() { return KarnoSparkleManager::instance(); }

void start(FakePlatform& machine) {
  machine.onThread([] { KarnoSparkleManager::start(); });
  machine.runFor(5);
}

// The lines of the manager itself.
std::vector<Line> sparkleLines(const FakePlatform& machine) {
  std::vector<Line> found;
  for (const Line& line : machine.consoleMessages()) {
    if (line.message.starts_with("Sparkle[")) found.push_back(line);
  }
  return found;
}

TEST(UpdaterStart, ForgetsAStoredFeedAndThenStartsTheUpdaterOnTheMainThread) {
  FakePlatform machine;

  start(machine);

  EXPECT_THAT(machine.updater.calls, ElementsAre("clearFeedURLFromUserDefaults", "startUpdater"));
  EXPECT_THAT(machine.consoleMessages(), ElementsAre(kStartingUp));
}

TEST(UpdaterStart, ReturnsOnlyWhenTheMainThreadHasStartedTheUpdater) {
  FakePlatform machine;
  std::vector<std::string> callsAtReturn;
  machine.dispatch.mainQueue().async([&machine] { machine.dispatch.sleep(3); });

  machine.onThread([&] {
    KarnoSparkleManager::start();
    callsAtReturn = machine.updater.calls;
  });
  machine.runFor(5);

  EXPECT_THAT(callsAtReturn, ElementsAre("clearFeedURLFromUserDefaults", "startUpdater"));
}

TEST(UpdaterStart, StartsTheUpdaterThroughTheMainDispatchQueue) {
  FakePlatform machine;

  start(machine);

  EXPECT_THAT(machine.dispatch.mainSubmissions(), ElementsAre("main queue"));
}

TEST(UpdaterStart, LogsAFailureAndGoesOn) {
  FakePlatform machine;
  machine.withFirstStartup(false).withUserSetting("useFileProvider", true);
  machine.withAdmin("UPDATES_ENABLED", "yes");
  machine.files.addFile(kTouchFileOfTheCache, "");
  machine.updater.startError = Error("SUSparkleErrorDomain", 1, {{"NSLocalizedDescription", "No key."}});

  start(machine);

  EXPECT_THAT(
      sparkleLines(machine),
      ElementsAre(kStartingUp,
                  Line("*** ERROR ***",
                       "Sparkle[INIT] Failed to start. Reason: Error Domain=SUSparkleErrorDomain Code=1 "
                       "\"No key.\" UserInfo={NSLocalizedDescription=No key.}"),
                  kCheckingFuse, Line("INFO", "Sparkle[CONFIG] Updates enabled by admin")));
  EXPECT_THAT(machine.updater.automaticChecks, ElementsAre(true));
}

TEST(UpdaterStart, LeavesAutomaticChecksAsTheyWereWhenTheAdministratorSaysNothing) {
  FakePlatform machine;

  start(machine);

  EXPECT_THAT(machine.updater.automaticChecks, IsEmpty());
}

struct Policy {
  const char* value;
  bool automatic;
  const char* line;
};

class AdministratorsPolicy : public ::testing::TestWithParam<Policy> {};

TEST_P(AdministratorsPolicy, IsWrittenToTheUpdaterWithALineOfItsOwn) {
  FakePlatform machine;
  machine.withAdmin("UPDATES_ENABLED", GetParam().value);

  start(machine);

  EXPECT_THAT(machine.updater.automaticChecks, ElementsAre(GetParam().automatic));
  EXPECT_THAT(sparkleLines(machine), ElementsAre(kStartingUp, Line("INFO", GetParam().line)));
}

INSTANTIATE_TEST_SUITE_P(Values, AdministratorsPolicy,
                         ::testing::Values(Policy{"YES", true, "Sparkle[CONFIG] Updates enabled by admin"},
                                           Policy{"1", true, "Sparkle[CONFIG] Updates enabled by admin"},
                                           Policy{"NO", false, "Sparkle[CONFIG] Updates disabled by admin"},
                                           Policy{"certainly", false,
                                                  "Sparkle[CONFIG] Updates disabled by admin"}));

TEST(PolicyOfTheAdministrator, DoesNotKeepTheEmbeddedApplicationFromSwitchingBackOnOrFromChecking) {
  FakePlatform machine;
  machine.withAdmin("UPDATES_ENABLED", "NO");
  start(machine);

  sparkleManager().setCheckForUpdatesAutomatically(true);
  sparkleManager().checkForUpdates();

  EXPECT_THAT(machine.updater.automaticChecks, ElementsAre(false, true));
  EXPECT_EQ(machine.updater.checks, 1);
}

TEST(UpdaterStart, RepeatsEveryStepWithTheSameUpdater) {
  FakePlatform machine;
  machine.withAdmin("UPDATES_ENABLED", "NO");
  start(machine);

  start(machine);

  EXPECT_EQ(machine.updater.made, 1);
  EXPECT_THAT(machine.updater.calls, ElementsAre("clearFeedURLFromUserDefaults", "startUpdater",
                                                 "clearFeedURLFromUserDefaults", "startUpdater"));
  EXPECT_THAT(machine.updater.automaticChecks, ElementsAre(false, false));
}

TEST(Updater, IsBuiltByTheFirstQuestionAndOnlyOnce) {
  FakePlatform machine;
  EXPECT_EQ(machine.updater.made, 0);

  machine.onThread([] { sparkleManager().isUpdateInProgress(); });
  machine.onThread([] { sparkleManager().isUpdateInProgress(); });
  machine.runUntilIdle();

  EXPECT_EQ(machine.updater.made, 1);
  EXPECT_THAT(machine.updater.calls, IsEmpty());
}

struct State {
  bool inSession;
  bool canCheck;
  bool isInProgress;
};

class UnderWay : public ::testing::TestWithParam<State> {};

TEST_P(UnderWay, IsASessionOrAnUpdaterThatCannotCheck) {
  FakePlatform machine;
  machine.updater.inSession = GetParam().inSession;
  machine.updater.canCheck = GetParam().canCheck;

  EXPECT_EQ(sparkleManager().isUpdateInProgress(), GetParam().isInProgress);
}

INSTANTIATE_TEST_SUITE_P(States, UnderWay,
                         ::testing::Values(State{false, true, false}, State{true, true, true},
                                           State{false, false, true}, State{true, false, true}));

TEST(UnderWayAnswer, IsFreshEveryTime) {
  FakePlatform machine;
  EXPECT_FALSE(sparkleManager().isUpdateInProgress());

  machine.updater.canCheck = false;

  EXPECT_TRUE(sparkleManager().isUpdateInProgress());
}

TEST(TouchFile, LiesInTheCacheFolderOfTheLauncher) {
  FakePlatform machine;

  EXPECT_EQ(sparkleManager().updatedTouchfile(), kTouchFileOfTheCache);
}

TEST(TouchFile, IsCreatedEmptyInPlaceOfAnOldOne) {
  FakePlatform machine;
  machine.files.addFile(kTouchFileOfTheCache, "old");

  sparkleManager().recordKarnoHasBeenUpdated();

  EXPECT_EQ(machine.files.read(kTouchFileOfTheCache).value(), "");
  EXPECT_THAT(machine.consoleMessages(),
              ElementsAre(Line("INFO", "Sparkle[INSTALL] Creating 'updated' touchfile")));
}

TEST(TouchFile, CannotBeCreatedWithoutTheFolderWhichIsNotMade) {
  FakePlatform machine;

  sparkleManager().recordKarnoHasBeenUpdated();

  EXPECT_FALSE(machine.files.fileExists(kCache));
  EXPECT_THAT(machine.consoleMessages(),
              ElementsAre(Line("INFO", "Sparkle[INSTALL] Creating 'updated' touchfile"),
                          Line("*** ERROR ***",
                               std::string("Sparkle[INSTALL] Failed to create 'updated' touchfile (") +
                                   kTouchFileOfTheCache + ")")));
}

TEST(CheckFollowingAnUpdate, IsNotMadeWithoutTheTouchFile) {
  FakePlatform machine;
  machine.withFirstStartup(false).withUserSetting("useFileProvider", false);

  start(machine);

  EXPECT_THAT(machine.consoleMessages(), ElementsAre(kStartingUp));
  EXPECT_THAT(machine.network.requests, IsEmpty());
}

TEST(CheckFollowingAnUpdate, OfAFileProviderBuildOnlyRemovesTheTouchFile) {
  FakePlatform machine;
  machine.withFirstStartup(false).withUserSetting("useFileProvider", true);
  machine.files.addFile(kTouchFileOfTheCache, "");

  start(machine);

  EXPECT_THAT(sparkleLines(machine), ElementsAre(kStartingUp, kCheckingFuse));
  EXPECT_THAT(machine.consoleMessages(), Contains(kNoFuseCheck));
  EXPECT_FALSE(machine.files.fileExists(kTouchFileOfTheCache));
  EXPECT_THAT(machine.network.requests, IsEmpty());
}

TEST(CheckFollowingAnUpdate, RemovesTheTouchFileOnlyWhenTheUserHasAnswered) {
  FakePlatform machine;
  machine.withFirstStartup(false)
      .withUserSetting("useFileProvider", false)
      .withFuse("4.4.1")
      .withStrings(kStringsOfTheStart);
  machine.network.bodies["https://api.github.com/repos/macfuse/macfuse/releases/latest"] =
      R"({"name": "macFUSE 4.5.0"})";
  machine.files.addFile(kTouchFileOfTheCache, "");
  bool wasThereWhileAsked = false;
  machine.alerts.answerNext(platform::kAlertSecondButtonReturn,
                            [&] { wasThereWhileAsked = machine.files.fileExists(kTouchFileOfTheCache); });

  start(machine);

  EXPECT_TRUE(wasThereWhileAsked);
  EXPECT_FALSE(machine.files.fileExists(kTouchFileOfTheCache));
}

TEST(CheckFollowingAnUpdate, LogsATouchFileThatCannotBeRemovedAndChecksAgainAtTheNextStart) {
  FakePlatform machine;
  machine.withFirstStartup(false).withUserSetting("useFileProvider", true);
  machine.files.addFile(kTouchFileOfTheCache, "");
  machine.files.failRemove(kTouchFileOfTheCache, EACCES);

  start(machine);
  start(machine);

  const Line failure("*** ERROR ***", std::string("Sparkle[START] Failed to remove '") +
                                          kTouchFileOfTheCache +
                                          "'. Reason:" + Error::posix(EACCES).description());
  EXPECT_THAT(sparkleLines(machine),
              ElementsAre(kStartingUp, kCheckingFuse, failure, kStartingUp, kCheckingFuse, failure));
}

TEST(RequestedCheck, MakesTheLauncherARegularApplicationBeforeTheUpdaterShowsAnything) {
  FakePlatform machine;
  std::vector<platform::ActivationPolicy> policiesWhenChecking;
  machine.updater.whenChecking = [&] { policiesWhenChecking = machine.application.policies; };

  sparkleManager().checkForUpdates();

  EXPECT_THAT(policiesWhenChecking, ElementsAre(platform::ActivationPolicy::Regular));
  EXPECT_THAT(machine.application.policies, ElementsAre(platform::ActivationPolicy::Regular));
  EXPECT_EQ(machine.updater.checks, 1);
}

TEST(RequestedCheck, DuringASessionIsOnlyWarnedOf) {
  FakePlatform machine;
  machine.updater.inSession = true;

  sparkleManager().checkForUpdates();

  EXPECT_EQ(machine.updater.checks, 0);
  EXPECT_THAT(machine.application.policies, IsEmpty());
  EXPECT_THAT(
      machine.consoleMessages(),
      ElementsAre(Line("WARN", "Sparkle[CHECK] Ignoring check for updates when already in progress")));
}

TEST(ResetSparkle, MakesTheNextLaunchAFirstOneOnDisk) {
  FakePlatform machine;
  machine.userDefaults.standard().values.insert_or_assign("SUHasLaunchedBefore", Value(true));

  sparkleManager().resetSparkle();

  EXPECT_EQ(machine.userDefaults.standard().values.at("SUHasLaunchedBefore"), Value(false));
  EXPECT_EQ(machine.userDefaults.standard().synchronisations, 1);
}

}  // namespace
}  // namespace karno
