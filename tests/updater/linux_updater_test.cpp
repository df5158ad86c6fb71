#include <gmock/gmock.h>

#include "elements_are.h"
#include "linux_updater_fixture.h"

namespace karno::platform::updates {
namespace {

using karno::test::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::SizeIs;

using RequestedUpdate = LinuxUpdaterTest;

TEST_F(RequestedUpdate, GoesThroughAllStagesAndStaysInProgressUntilTheLauncherEnds) {
  check();
  EXPECT_TRUE(updater.sessionInProgress());
  answer(kUserUpdateChoiceInstall);

  EXPECT_THAT(delegate.calls,
              ElementsAre("loaded", "found Karno 1.1 1.1", "choice 1",
                          "will download https://files.example.org/Karno-1.1.zip", "downloaded",
                          "will extract", "extracted", "will install", "relaunch?"));
  EXPECT_TRUE(updater.sessionInProgress());
  EXPECT_THAT(installer.installations,
              ElementsAre("/Applications/.karno-update-2/Karno.app for /Applications/Karno.app"));
  EXPECT_EQ(machine.application.terminations(), 0);
  EXPECT_THAT(machine.alerts.shown(), IsEmpty());
  EXPECT_THAT(folders.removed, ElementsAre("/Applications/.karno-update-1"));
  EXPECT_THAT(folders.handedOver, ElementsAre("/Applications/.karno-update-2"));
}

TEST_F(RequestedUpdate, HandsTheFeedsWordsToTheInstaller) {
  check();
  answer(kUserUpdateChoiceInstall);

  ASSERT_THAT(installer.requests, SizeIs(1));
  const UnpackRequest& request = installer.requests[0];
  EXPECT_EQ(request.archive, "/Applications/.karno-update-1/archive");
  EXPECT_EQ(request.length, 7U);
  EXPECT_EQ(request.signature, "sig");
  EXPECT_EQ(request.publicKey, kKey);
  EXPECT_EQ(request.bundle, "/Applications/Karno.app");
  EXPECT_EQ(request.folder, "/Applications/.karno-update-2");
  ASSERT_THAT(downloads.requests, SizeIs(1));
  EXPECT_EQ(downloads.requests[0].bytesMax, 7U);
  EXPECT_EQ(downloads.requests[0].thread, "global(0)");
}

TEST_F(RequestedUpdate, IsNeverDownloadedBeyondFourGibibytesWhateverTheFeedSays) {
  machine.network.bodies[kFeed] = feedOf(
      "<item><sparkle:version>1.1</sparkle:version>"
      "<enclosure url=\"https://files.example.org/a.zip\" length=\"9000000000000000000\"/></item>");

  check();
  answer(kUserUpdateChoiceInstall);

  ASSERT_THAT(downloads.requests, SizeIs(1));
  EXPECT_EQ(downloads.requests[0].bytesMax, 4294967296U);
}

TEST_F(RequestedUpdate, OpensTheNewVersionAndEndsWhenTheDelegateWantsThat) {
  delegate.relaunches = true;

  check();
  answer(kUserUpdateChoiceInstall);

  EXPECT_THAT(
      installer.installations,
      ElementsAre("/Applications/.karno-update-2/Karno.app for /Applications/Karno.app and relaunch"));
  EXPECT_EQ(machine.application.terminations(), 1);
}

TEST_F(RequestedUpdate, ShowsAWindowWhileTheFeedIsFetchedAndOneWhileItDownloadsAndUnpacks) {
  updater.checkForUpdates();
  ASSERT_THAT(machine.windows.progress, SizeIs(1));
  EXPECT_EQ(machine.windows.progress[0]->textField.stringValue(), "CHECKING");
  machine.runFor(1);
  EXPECT_THAT(machine.windows.progress[0]->calls,
              ElementsAre("min 0", "max 100", "value 0", "show", "close"));

  answer(kUserUpdateChoiceInstall, 4.5);
  ASSERT_THAT(machine.windows.progress, SizeIs(2));
  EXPECT_EQ(machine.windows.progress[1]->textField.stringValue(), "DOWNLOADING_AMOUNT");
  EXPECT_EQ(machine.windows.progress[1]->progressIndicator.doubleValue(), 40);
  machine.runFor(9);
  ASSERT_THAT(machine.windows.progress, SizeIs(3));
  EXPECT_THAT(
      machine.windows.progress[1]->calls,
      ElementsAre("min 0", "max 100", "value 0", "show", "value 10", "value 20", "value 30", "value 40",
                  "value 50", "value 60", "value 70", "value 80", "value 90", "value 100", "close"));
  EXPECT_EQ(machine.windows.progress[2]->textField.stringValue(), "EXTRACTING");
  EXPECT_EQ(machine.windows.progress[2]->progressIndicator.doubleValue(), 30);
}

TEST_F(RequestedUpdate, SaysHowMuchThereIsAndHowMuchIsLeftInWholeMegabytes) {
  machine.withResource(
      "Updater.json",
      R"({"DOWNLOADING_AMOUNT": "{{ name }} {{ new }}: {{ total }} MB, {{ left }} MB left"})");
  downloads.total = 1'000'001;

  check();
  answer(kUserUpdateChoiceInstall, 4.5);

  EXPECT_EQ(machine.windows.progress.at(1)->textField.stringValue(), "Karno 1.1: 2 MB, 1 MB left");
}

TEST_F(RequestedUpdate, OffersWithTheNotesAndThreeAnswers) {
  machine.withResource("Updater.json", R"({"OFFER_MESSAGE": "New {{ name }}", "INSTALL": "Install",
    "OFFER_EXPLANATION": "{{ name }} {{ new }}, you have {{ old }}.", "LATER": "Later", "SKIP": "Skip"})");

  check();

  ASSERT_THAT(offers.shown, SizeIs(1));
  EXPECT_EQ(offers.shown[0].message, "New Karno");
  EXPECT_EQ(offers.shown[0].explanation, "Karno 1.1, you have 1.0.");
  EXPECT_EQ(offers.shown[0].notes, "Better.");
  EXPECT_EQ(offers.shown[0].install, "Install");
  EXPECT_EQ(offers.shown[0].later, "Later");
  EXPECT_EQ(offers.shown[0].skip, "Skip");
  EXPECT_EQ(offers.timesBroughtToFront, 1);
}

TEST_F(RequestedUpdate, ThatIsDismissedEndsTheSessionAndIsOfferedAgain) {
  check();
  answer(kUserUpdateChoiceDismiss);
  EXPECT_FALSE(updater.sessionInProgress());
  EXPECT_FALSE(offers.isUp);
  check();

  EXPECT_THAT(delegate.calls,
              ElementsAre("loaded", "found Karno 1.1 1.1", "choice 2", "loaded", "found Karno 1.1 1.1"));
  EXPECT_FALSE(hasStandard("SUSkippedVersion"));
}

TEST_F(RequestedUpdate, ThatIsSkippedIsKeptInTheUserDefaultsAndOfferedOnlyToAUserWhoAsks) {
  check();
  answer(kUserUpdateChoiceSkip);
  EXPECT_EQ(standard("SUSkippedVersion"), Value("1.1"));
  EXPECT_FALSE(updater.sessionInProgress());

  check();

  EXPECT_TRUE(offers.isUp);
}

TEST_F(RequestedUpdate, ThatCannotBeShownCountsAsDismissed) {
  offers.cannotBeShown = true;

  check();

  EXPECT_THAT(delegate.calls, ElementsAre("loaded", "found Karno 1.1 1.1", "choice 2"));
  EXPECT_FALSE(updater.sessionInProgress());
}

TEST_F(RequestedUpdate, ThatFindsNothingTellsTheUserAfterTheSession) {
  machine.network.bodies[kFeed] = feedOf(item("1.0"));
  bool wasInProgress = true;
  machine.alerts.answerNext(kAlertFirstButtonReturn, [&] { wasInProgress = updater.sessionInProgress(); });

  check();

  EXPECT_THAT(delegate.calls, ElementsAre("loaded", "nothing 1001 UP_TO_DATE_EXPLANATION", "aborted 1001"));
  ASSERT_THAT(machine.alerts.shown(), SizeIs(1));
  EXPECT_EQ(machine.alerts.shown()[0].messageText, "UP_TO_DATE");
  EXPECT_EQ(machine.application.activations(), 1);
  EXPECT_FALSE(wasInProgress);
}

TEST_F(RequestedUpdate, AskedForAgainComesToTheFrontInsteadOfASecondOne) {
  check();

  check();

  EXPECT_THAT(machine.network.requests, SizeIs(1));
  EXPECT_EQ(offers.timesBroughtToFront, 2);
}

TEST_F(RequestedUpdate, CancelledWhileTheFeedIsFetchedGivesTheFetchUp) {
  secondsOfFetching = 600;
  check();

  machine.windows.progress.at(0)->cancelButton.press();
  machine.runFor(2);

  EXPECT_EQ(fetchesGivenUp, 1);
}

TEST_F(RequestedUpdate, CancelledWhileTheFeedIsFetchedEndsAtOnceAndHearsOfTheFeedNoMore) {
  updater.checkForUpdates();

  machine.windows.progress.at(0)->cancelButton.press();

  EXPECT_THAT(delegate.calls, ElementsAre("aborted 4007"));
  EXPECT_FALSE(updater.sessionInProgress());
  machine.runFor(5);
  EXPECT_THAT(delegate.calls, SizeIs(1));
  EXPECT_THAT(machine.alerts.shown(), IsEmpty());
}

// However long the feed is, the windows go on meanwhile.
TEST_F(RequestedUpdate, IsReadFromTheFeedOutsideTheMainThread) {
  check();

  EXPECT_THAT(readers, ElementsAre("global(0)"));
  EXPECT_THAT(delegate.calls, ElementsAre("loaded", "found Karno 1.1 1.1"));
}

TEST_F(RequestedUpdate, CancelledWhileTheFeedIsReadEndsAtOnceAndHearsOfTheFeedNoMore) {
  secondsOfReading = 30;
  check();
  ASSERT_THAT(readers, SizeIs(1));

  machine.windows.progress.at(0)->cancelButton.press();

  EXPECT_THAT(delegate.calls, ElementsAre("aborted 4007"));
  EXPECT_FALSE(updater.sessionInProgress());
  machine.runFor(60);
  EXPECT_THAT(delegate.calls, SizeIs(1));
  EXPECT_THAT(offers.shown, IsEmpty());
  EXPECT_THAT(machine.alerts.shown(), IsEmpty());
}

TEST_F(RequestedUpdate, CanBeAskedForAgainWhileTheFeedOfACancelledOneIsRead) {
  secondsOfReading = 30;
  check();
  machine.windows.progress.at(0)->cancelButton.press();
  secondsOfReading = 0;

  check();
  machine.runFor(60);

  EXPECT_THAT(delegate.calls, ElementsAre("aborted 4007", "loaded", "found Karno 1.1 1.1"));
  EXPECT_THAT(offers.shown, SizeIs(1));
}

// The machine goes while the reader is at work, as the launcher's does when it ends.
TEST_F(RequestedUpdate, ThatIsReadWhenTheLauncherEndsDoesNotHoldItUp) {
  secondsOfReading = 30;

  check();

  EXPECT_THAT(readers, SizeIs(1));
  EXPECT_TRUE(updater.sessionInProgress());
}

TEST_F(RequestedUpdate, CancelledWhileItDownloadsLeavesNothingBehindAndSaysNoMore) {
  check();
  answer(kUserUpdateChoiceInstall, 3.5);
  machine.windows.progress.at(1)->cancelButton.press();
  machine.runFor(5);

  EXPECT_EQ(delegate.calls.back(), "download cancelled");
  EXPECT_THAT(folders.removed, ElementsAre("/Applications/.karno-update-1"));
  EXPECT_THAT(machine.alerts.shown(), IsEmpty());
  EXPECT_FALSE(updater.sessionInProgress());
}

TEST_F(RequestedUpdate, CancelledWhileItUnpacksLeavesNothingBehind) {
  check();
  answer(kUserUpdateChoiceInstall, 13.5);
  machine.windows.progress.at(2)->cancelButton.press();
  machine.runFor(5);

  EXPECT_EQ(delegate.calls.back(), "aborted 4007");
  EXPECT_THAT(folders.removed, SizeIs(2));
  EXPECT_THAT(installer.installations, IsEmpty());
}

TEST_F(RequestedUpdate, CancelledWhenItHasJustBeenUnpackedIsNotInstalled) {
  installer.whenDone = [this] {
    machine.dispatch.mainEvents().async([this] { machine.windows.progress.at(2)->cancelButton.press(); });
  };

  check();
  answer(kUserUpdateChoiceInstall);

  EXPECT_EQ(delegate.calls.back(), "aborted 4007");
  EXPECT_THAT(installer.installations, IsEmpty());
  EXPECT_THAT(folders.removed, SizeIs(2));
}

TEST_F(RequestedUpdate, OfUnknownLengthShowsNoShareOfIt) {
  downloads.total = 0;

  check();
  answer(kUserUpdateChoiceInstall, 5);

  EXPECT_EQ(machine.windows.progress.at(1)->progressIndicator.doubleValue(), 0);
}

TEST_F(RequestedUpdate, WhoseDownloadFailsTellsTheDelegateTwiceAndTheUserOnce) {
  downloads.failure = Error("NSURLErrorDomain", -1005, {{"NSLocalizedDescription", "The line broke."}});

  check();
  answer(kUserUpdateChoiceInstall);

  EXPECT_EQ(delegate.calls.at(delegate.calls.size() - 2), "download failed -1005");
  EXPECT_EQ(delegate.calls.back(), "aborted 2001");
  ASSERT_THAT(machine.alerts.shown(), SizeIs(1));
  EXPECT_EQ(machine.alerts.shown()[0].messageText, "FAILED");
  EXPECT_EQ(machine.alerts.shown()[0].informativeText, "The update could not be downloaded: The line broke.");
  EXPECT_THAT(folders.removed, SizeIs(1));
}

TEST_F(RequestedUpdate, WithABadSignatureIsAbortedBeforeAnythingIsInstalled) {
  installer.failure = Error("SUSparkleErrorDomain", 3001, {{"NSLocalizedDescription", "Not signed by us."}});

  check();
  answer(kUserUpdateChoiceInstall);

  EXPECT_EQ(delegate.calls.at(delegate.calls.size() - 2), "will extract");
  EXPECT_EQ(delegate.calls.back(), "aborted 3001");
  EXPECT_EQ(machine.alerts.shown().at(0).informativeText, "Not signed by us.");
  EXPECT_THAT(installer.installations, IsEmpty());
  EXPECT_THAT(folders.removed, SizeIs(2));
}

TEST_F(RequestedUpdate, WhoseInstallerCannotBeStartedIsAborted) {
  installer.installFailure = Error::posix(2);

  check();
  answer(kUserUpdateChoiceInstall);

  EXPECT_EQ(delegate.calls.back(), "aborted 2");
  EXPECT_FALSE(updater.sessionInProgress());
  EXPECT_THAT(folders.handedOver, IsEmpty());
  EXPECT_THAT(folders.removed, SizeIs(2));
}

TEST_F(RequestedUpdate, WhereTheBundlesFolderCannotBeWrittenIsAborted) {
  folders.failure = Error("SUSparkleErrorDomain", 4012);

  check();
  answer(kUserUpdateChoiceInstall);

  EXPECT_THAT(delegate.calls, ElementsAre("loaded", "found Karno 1.1 1.1", "choice 1", "aborted 4012"));
  EXPECT_THAT(downloads.requests, IsEmpty());
}

TEST_F(RequestedUpdate, WhereNoBundleCanBeExchangedIsAbortedBeforeTheDownload) {
  folders.refusal = Error("SUSparkleErrorDomain", 4005, {{"NSLocalizedDescription", "Not on this disk."}});

  check();
  answer(kUserUpdateChoiceInstall);

  EXPECT_THAT(delegate.calls, ElementsAre("loaded", "found Karno 1.1 1.1", "choice 1", "aborted 4005"));
  EXPECT_THAT(downloads.requests, IsEmpty());
  ASSERT_THAT(machine.alerts.shown(), SizeIs(1));
  EXPECT_EQ(machine.alerts.shown()[0].informativeText, "Not on this disk.");
}

TEST_F(RequestedUpdate, WithoutANetworkTellsTheUserWhy) {
  machine.network.bodies.clear();

  check();

  EXPECT_THAT(delegate.calls, ElementsAre("aborted 1002"));
  EXPECT_EQ(machine.alerts.shown().at(0).messageText, "CHECK_FAILED");
  EXPECT_THAT(machine.alerts.shown().at(0).informativeText, HasSubstr("appears to be offline"));
}

}  // namespace
}  // namespace karno::platform::updates
