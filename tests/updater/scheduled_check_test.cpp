#include <gmock/gmock.h>

#include <limits>

#include "elements_are.h"
#include "linux_updater_fixture.h"
#include "printing.h"

namespace karno::platform::updates {
namespace {

using karno::test::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

using UpdaterSettings = LinuxUpdaterTest;

TEST_F(UpdaterSettings, KeepTheTimeOfTheLastCheck) {
  check();

  EXPECT_NE(standard("SULastCheckTime").get<Date>(), nullptr);
}

TEST_F(UpdaterSettings, ForgetAFeedThatWasKept) {
  settings.setObject("https://old/", "SUFeedURL");

  updater.clearFeedURLFromUserDefaults();

  EXPECT_FALSE(hasStandard("SUFeedURL"));
}

struct Flaw {
  const char* key;
  Value value;
  std::int64_t code;
};

class Misconfiguration : public LinuxUpdaterTest, public ::testing::WithParamInterface<Flaw> {};

TEST_P(Misconfiguration, KeepsTheUpdaterFromStartingAndFromChecking) {
  machine.bundles.main().info.insert_or_assign(GetParam().key, GetParam().value);
  EXPECT_TRUE(updater.canCheckForUpdates());

  const auto error = updater.startUpdater();
  check();

  ASSERT_TRUE(error.has_value());
  EXPECT_EQ(error->domain(), "SUSparkleErrorDomain");
  EXPECT_EQ(error->code(), GetParam().code);
  EXPECT_FALSE(updater.canCheckForUpdates());
  EXPECT_THAT(machine.network.requests, IsEmpty());
  EXPECT_THAT(delegate.calls, ElementsAre("aborted " + std::to_string(GetParam().code)));
  ASSERT_THAT(machine.alerts.shown(), SizeIs(1));
  EXPECT_EQ(machine.alerts.shown()[0].messageText, "CHECK_FAILED");
  EXPECT_EQ(machine.alerts.shown()[0].informativeText, error->localizedDescription());
}

INSTANTIATE_TEST_SUITE_P(Flaws, Misconfiguration,
                         ::testing::Values(Flaw{"SUPublicEDKey", "", 1}, Flaw{"SUPublicEDKey", 7, 1},
                                           Flaw{"SUPublicEDKey",
                                                "hPsf8t1ewC+uyWVduIlnvE1phVi04JyHv3xRg7kyhp==", 1},
                                           Flaw{"CFBundleVersion", "", 7}, Flaw{"CFBundleVersion", 7, 7}));

TEST_F(UpdaterSettings, AreReadAtAStartThatClearsAwayWhatWasCutOff) {
  updater.startUpdater();
  machine.runFor(1);

  EXPECT_THAT(folders.cleanedBeside, ElementsAre("/Applications/Karno.app"));
}

TEST_F(UpdaterSettings, ThatAreMendedLetALaterStartSucceed) {
  machine.bundles.main().info.insert_or_assign("SUPublicEDKey", "");
  updater.startUpdater();
  machine.bundles.main().info.insert_or_assign("SUPublicEDKey", kKey);

  const auto error = updater.startUpdater();

  EXPECT_EQ(error, std::nullopt);
  EXPECT_TRUE(updater.canCheckForUpdates());
}

TEST_F(UpdaterSettings, AreLeftAloneByASecondStart) {
  machine.bundles.main().info.erase("SUEnableAutomaticChecks");
  updater.startUpdater();
  machine.runFor(10);

  const auto error = updater.startUpdater();
  machine.runFor(10);

  EXPECT_EQ(error, std::nullopt);
  EXPECT_THAT(machine.alerts.shown(), IsEmpty());
  EXPECT_THAT(folders.cleanedBeside, SizeIs(1));
}

using ScheduledCheck = LinuxUpdaterTest;

TEST_F(ScheduledCheck, IsNotMadeUnlessItIsWanted) {
  EXPECT_EQ(updater.startUpdater(), std::nullopt);
  machine.runFor(kDay + 3600);

  EXPECT_THAT(machine.network.requests, IsEmpty());
  EXPECT_EQ(standard("SUHasLaunchedBefore"), Value(true));
}

TEST_F(ScheduledCheck, IsMadeAtOnceWhenThereWasNoneAndThenOnceADay) {
  machine.network.bodies[kFeed] = feedOf("");
  settings.setObject(true, "SUEnableAutomaticChecks");

  updater.startUpdater();
  machine.runFor(10);
  EXPECT_THAT(machine.network.requests, SizeIs(1));
  machine.runFor(kDay - 700);
  EXPECT_THAT(machine.network.requests, SizeIs(1));
  machine.runFor(1400);

  EXPECT_THAT(machine.network.requests, SizeIs(2));
  EXPECT_THAT(machine.windows.progress, IsEmpty());
  EXPECT_THAT(machine.alerts.shown(), IsEmpty());
}

TEST_F(ScheduledCheck, BeginsSoonAfterItIsSwitchedOnAndEndsWhenItIsSwitchedOff) {
  machine.network.bodies[kFeed] = feedOf("");
  updater.startUpdater();
  machine.runFor(100);

  machine.onThread([this] { updater.setAutomaticallyChecksForUpdates(true); });
  machine.runFor(1);
  EXPECT_THAT(machine.network.requests, SizeIs(1));
  updater.setAutomaticallyChecksForUpdates(false);
  machine.runFor(kDay + 3600);

  EXPECT_THAT(machine.network.requests, SizeIs(1));
  EXPECT_EQ(standard("SUEnableAutomaticChecks"), Value(false));
}

TEST_F(ScheduledCheck, IsNotMadeBeforeTheStart) {
  updater.setAutomaticallyChecksForUpdates(true);
  machine.runFor(10);

  EXPECT_THAT(machine.network.requests, IsEmpty());
}

TEST_F(ScheduledCheck, WaitsForTheEndOfASession) {
  settings.setObject(true, "SUEnableAutomaticChecks");
  updater.startUpdater();
  machine.runFor(kDay + 3600);

  EXPECT_THAT(machine.network.requests, SizeIs(1));
  EXPECT_THAT(offers.shown, SizeIs(1));
}

TEST_F(ScheduledCheck, OfAFeedThatIsRefusedIsNotMadeMoreOftenForThat) {
  delegate.feed = "http://updates.example.org/appcast.xml";
  settings.setObject(true, "SUEnableAutomaticChecks");

  updater.startUpdater();
  machine.runFor(3600);

  EXPECT_THAT(delegate.calls, ElementsAre("aborted 3"));
}

TEST_F(ScheduledCheck, IsNeverMadeMoreOftenThanOnceAnHour) {
  machine.network.bodies[kFeed] = feedOf("");
  settings.setObject(true, "SUEnableAutomaticChecks");
  settings.setObject(1, "SUScheduledCheckInterval");

  updater.startUpdater();
  machine.runFor(3 * 3600 - 700);

  EXPECT_THAT(machine.network.requests, SizeIs(3));
}

// A property list may hold such a number.
TEST_F(ScheduledCheck, IsMadeOnceADayWhereItsIntervalIsNoNumber) {
  machine.network.bodies[kFeed] = feedOf("");
  settings.setObject(true, "SUEnableAutomaticChecks");
  settings.setObject(std::numeric_limits<double>::quiet_NaN(), "SUScheduledCheckInterval");

  updater.startUpdater();
  machine.runFor(3 * kDay - 3600);

  EXPECT_THAT(machine.network.requests, SizeIs(3));
}

TEST_F(ScheduledCheck, IsNotKeptWaitingByALastOneInTheFuture) {
  settings.setObject(machine.clock.now() + std::chrono::hours(24 * 365), "SULastCheckTime");
  settings.setObject(true, "SUEnableAutomaticChecks");

  updater.startUpdater();
  machine.runFor(1);

  EXPECT_THAT(machine.network.requests, SizeIs(1));
}

// Nobody could cancel it.
TEST_F(ScheduledCheck, GivesAFeedUpThatIsNotReadAfterAMinute) {
  settings.setObject(true, "SUEnableAutomaticChecks");
  secondsOfReading = 70;

  updater.startUpdater();
  machine.runFor(59);
  EXPECT_TRUE(updater.sessionInProgress());
  machine.runFor(2);

  EXPECT_THAT(delegate.calls, ElementsAre("aborted 1002"));
  EXPECT_FALSE(updater.sessionInProgress());
  machine.runFor(60);
  EXPECT_THAT(delegate.calls, SizeIs(1));
  EXPECT_THAT(machine.alerts.shown(), IsEmpty());
}

TEST_F(ScheduledCheck, GivesAFetchUpAfterAMinute) {
  settings.setObject(true, "SUEnableAutomaticChecks");
  secondsOfFetching = 600;

  updater.startUpdater();
  machine.runFor(59);
  EXPECT_EQ(fetchesGivenUp, 0);
  machine.runFor(3);

  EXPECT_EQ(fetchesGivenUp, 1);
  EXPECT_THAT(delegate.calls, ElementsAre("aborted 1002"));
}

TEST_F(ScheduledCheck, OffersWithoutHurryOnceTheFeedIsThere) {
  settings.setObject(true, "SUEnableAutomaticChecks");

  updater.startUpdater();
  machine.runFor(120);

  EXPECT_THAT(delegate.calls, ElementsAre("loaded", "found Karno 1.1 1.1"));
  EXPECT_TRUE(offers.isUp);
}

TEST_F(ScheduledCheck, LeavesASkippedVersionAloneAndTellsNobody) {
  settings.setObject("1.1", "SUSkippedVersion");
  settings.setObject(true, "SUEnableAutomaticChecks");

  updater.startUpdater();
  machine.runFor(10);

  EXPECT_THAT(delegate.calls, ElementsAre("loaded", "nothing 1001 UP_TO_DATE_EXPLANATION", "aborted 1001"));
  EXPECT_THAT(machine.alerts.shown(), IsEmpty());
}

TEST_F(ScheduledCheck, ThatFailsTellsTheDelegateOnly) {
  machine.network.bodies.clear();
  settings.setObject(true, "SUEnableAutomaticChecks");

  updater.startUpdater();
  machine.runFor(10);

  EXPECT_THAT(delegate.calls, ElementsAre("aborted 1002"));
  EXPECT_THAT(machine.alerts.shown(), IsEmpty());
}

TEST_F(ScheduledCheck, WhoseUpdateTheUserWantedTellsTheUserOfItsFailure) {
  downloads.failure = Error::posix(28);
  settings.setObject(true, "SUEnableAutomaticChecks");
  updater.startUpdater();
  machine.runFor(10);

  answer(kUserUpdateChoiceInstall);

  EXPECT_THAT(machine.alerts.shown(), SizeIs(1));
}

using Permission = LinuxUpdaterTest;

TEST_F(Permission, IsAskedForOnTheSecondLaunchWhereTheBundleSaysNothing) {
  machine.bundles.main().info.erase("SUEnableAutomaticChecks");
  settings.setObject(true, "SUHasLaunchedBefore");
  machine.alerts.answerNext(kAlertSecondButtonReturn);

  updater.startUpdater();
  machine.runFor(10);

  ASSERT_THAT(machine.alerts.shown(), SizeIs(1));
  EXPECT_EQ(machine.alerts.shown()[0].messageText, "PERMISSION");
  EXPECT_EQ(standard("SUEnableAutomaticChecks"), Value(false));
  EXPECT_THAT(machine.network.requests, IsEmpty());
}

TEST_F(Permission, IsNotAskedForOnTheFirstLaunch) {
  machine.bundles.main().info.erase("SUEnableAutomaticChecks");

  updater.startUpdater();
  machine.runFor(10);

  EXPECT_THAT(machine.alerts.shown(), IsEmpty());
  EXPECT_EQ(standard("SUHasLaunchedBefore"), Value(true));
}

TEST_F(Permission, ThatIsGivenBeginsTheChecks) {
  machine.bundles.main().info.erase("SUEnableAutomaticChecks");
  settings.setObject(true, "SUHasLaunchedBefore");

  updater.startUpdater();
  machine.runFor(10);

  EXPECT_EQ(standard("SUEnableAutomaticChecks"), Value(true));
  EXPECT_THAT(machine.network.requests, SizeIs(1));
}

// The administrator's policy comes while the question is on the screen.
TEST_F(Permission, ThatIsGivenChangesNothingThatWasDecidedMeanwhile) {
  machine.bundles.main().info.erase("SUEnableAutomaticChecks");
  settings.setObject(true, "SUHasLaunchedBefore");
  machine.alerts.answerNext(kAlertFirstButtonReturn,
                            [this] { updater.setAutomaticallyChecksForUpdates(false); });

  updater.startUpdater();
  machine.runFor(10);

  EXPECT_EQ(standard("SUEnableAutomaticChecks"), Value(false));
  EXPECT_THAT(machine.network.requests, IsEmpty());
}

TEST_F(Permission, MakesASessionWhileItIsAsked) {
  machine.bundles.main().info.erase("SUEnableAutomaticChecks");
  settings.setObject(true, "SUHasLaunchedBefore");
  bool wasInProgress = false;
  machine.alerts.answerNext(kAlertSecondButtonReturn, [&] { wasInProgress = updater.sessionInProgress(); });

  updater.startUpdater();
  machine.runFor(1);

  EXPECT_TRUE(wasInProgress);
  EXPECT_FALSE(updater.sessionInProgress());
}

}  // namespace
}  // namespace karno::platform::updates
