#include "platform/linux/updater/linux_updater.h"

#include <fmt/format.h>
#include <gmock/gmock.h>

#include "fake_update_services.h"
#include "printing.h"

namespace karno::platform::updates {
namespace {

using test::FakePlatform;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::SizeIs;

constexpr const char* kFeed = "https://updates.example.org/appcast.xml";
constexpr const char* kKey = "hPsf8t1ewC+uyWVduIlnvE1phVi04JyHv3xRg7kyhpU=";
constexpr double kDay = 86400;

std::string feedOf(const std::string& items) {
  return "<rss xmlns:sparkle=\"http://www.andymatuschak.org/xml-namespaces/sparkle\"><channel>" + items +
         "</channel></rss>";
}

std::string item(const std::string& version, const std::string& more = "") {
  return fmt::format(
      "<item><title>Karno "
      "{0}</title><sparkle:version>{0}</sparkle:version>{1}<description>Better.</description>"
      "<enclosure url=\"https://files.example.org/Karno-{0}.zip\" length=\"7\" "
      "sparkle:edSignature=\"sig\"/></item>",
      version, more);
}

// Writes down what it is told; each call must come on the main thread.
class Recorder final : public UpdaterDelegate {
 public:
  explicit Recorder(FakePlatform& machine) : machine_(machine) {}

  std::string feedURLStringForUpdater(Updater&) override { return feed; }
  void didFinishLoadingAppcast(Updater&) override { note("loaded"); }
  void didFindValidUpdate(Updater&, const AppcastItem& found) override {
    note("found " + found.title.value_or("(null)") + " " + found.displayVersionString);
  }
  void updaterDidNotFindUpdate(Updater&, const Error& error) override {
    note(fmt::format("nothing {} {}", error.code(), error.localizedDescription()));
  }
  void userDidMakeChoice(Updater&, long choice, const AppcastItem&) override {
    note(fmt::format("choice {}", choice));
  }
  void willDownloadUpdate(Updater&, const AppcastItem&, const std::string& url) override {
    note("will download " + url);
  }
  void didDownloadUpdate(Updater&, const AppcastItem&) override { note("downloaded"); }
  void failedToDownloadUpdate(Updater&, const AppcastItem&, const Error& error) override {
    note(fmt::format("download failed {}", error.code()));
  }
  void userDidCancelDownload(Updater&) override { note("download cancelled"); }
  void willExtractUpdate(Updater&, const AppcastItem&) override { note("will extract"); }
  void didExtractUpdate(Updater&, const AppcastItem&) override { note("extracted"); }
  void willInstallUpdate(Updater&, const AppcastItem&) override { note("will install"); }
  bool updaterShouldRelaunchApplication(Updater&) override {
    note("relaunch?");
    return relaunches;
  }
  void didAbortWithError(Updater&, const Error& error) override {
    note(fmt::format("aborted {}", error.code()));
  }

  std::vector<std::string> calls;
  std::string feed = kFeed;
  bool relaunches = false;

 private:
  void note(const std::string& call) {
    machine_.scheduler.requireMainThread(call);
    calls.push_back(call);
  }

  FakePlatform& machine_;
};

struct LinuxUpdaterTest : ::testing::Test {
  LinuxUpdaterTest() {
    machine.bundles.main().info = {{"CFBundleIdentifier", "it.vantul.KarnoWrapper"},
                                   {"CFBundleName", "Karno"},
                                   {"CFBundleVersion", "1.0"},
                                   {"CFBundleShortVersionString", "1.0"},
                                   {"SUEnableAutomaticChecks", false},
                                   {"SUPublicEDKey", kKey}};
    machine.network.bodies[kFeed] = feedOf(item("1.1"));
  }

  void check() {
    updater.checkForUpdates();
    machine.runFor(1);
  }
  void answer(long choice, double seconds = 30) {
    offers.answer(choice);
    machine.runFor(seconds);
  }
  Value standard(const std::string& key) { return machine.userDefaults.standard().values.at(key); }
  bool hasStandard(const std::string& key) { return machine.userDefaults.standard().values.contains(key); }

  FakePlatform machine;
  Recorder delegate{machine};
  test::FakeDownloads downloads{machine};
  test::FakeInstaller installer{machine};
  test::FakeUpdateFolders folders{machine};
  test::FakeUpdateSettings settings{machine};
  test::FakeOfferWindows offers{machine};
  LinuxUpdater updater{delegate,
                       {.downloads = downloads,
                        .installer = installer,
                        .folders = folders,
                        .settings = settings,
                        .offerWindows = offers}};
};

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
  EXPECT_THAT(machine.windows.progress[0]->calls, ElementsAre("show", "close"));

  answer(kUserUpdateChoiceInstall, 4.5);
  ASSERT_THAT(machine.windows.progress, SizeIs(2));
  EXPECT_EQ(machine.windows.progress[1]->textField.stringValue(), "DOWNLOADING");
  EXPECT_EQ(machine.windows.progress[1]->progressIndicator.doubleValue(), 40);
  machine.runFor(9);
  ASSERT_THAT(machine.windows.progress, SizeIs(3));
  EXPECT_THAT(machine.windows.progress[1]->calls, ElementsAre("show", "close"));
  EXPECT_EQ(machine.windows.progress[2]->textField.stringValue(), "EXTRACTING");
  EXPECT_EQ(machine.windows.progress[2]->progressIndicator.doubleValue(), 30);
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

TEST_F(RequestedUpdate, ThatIsCriticalCannotBeSkipped) {
  machine.network.bodies[kFeed] = feedOf(item("1.1", "<sparkle:criticalUpdate/>"));

  check();

  EXPECT_EQ(offers.shown.at(0).skip, "");
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

TEST_F(RequestedUpdate, ThatIsOnlyToBeReadOpensThePageAndInstallsNothing) {
  machine.network.bodies[kFeed] =
      feedOf("<item><sparkle:version>2</sparkle:version><link>https://a/news</link></item>");

  check();
  answer(kUserUpdateChoiceInstall);

  EXPECT_EQ(offers.shown.at(0).install, "LEARN_MORE");
  EXPECT_EQ(machine.workspace.opened.at(0).url, "https://a/news");
  EXPECT_THAT(delegate.calls, ElementsAre("loaded", "found (null) 2", "choice 2"));
  EXPECT_FALSE(updater.sessionInProgress());
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

  EXPECT_THAT(delegate.calls, ElementsAre("loaded", "nothing 1001 UP_TO_DATE_EXPLANATION"));
  ASSERT_THAT(machine.alerts.shown(), SizeIs(1));
  EXPECT_EQ(machine.alerts.shown()[0].messageText, "UP_TO_DATE");
  EXPECT_FALSE(wasInProgress);
}

TEST_F(RequestedUpdate, AskedForAgainComesToTheFrontInsteadOfASecondOne) {
  check();

  check();

  EXPECT_THAT(machine.network.requests, SizeIs(1));
  EXPECT_EQ(offers.timesBroughtToFront, 2);
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

TEST_F(RequestedUpdate, CancelledWhileItDownloadsLeavesNothingBehindAndSaysNoMore) {
  check();
  answer(kUserUpdateChoiceInstall, 3.5);
  machine.windows.progress.at(1)->cancelButton.press();
  machine.runFor(5);

  EXPECT_EQ(delegate.calls.at(delegate.calls.size() - 2), "download cancelled");
  EXPECT_EQ(delegate.calls.back(), "aborted 4007");
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
}

TEST_F(RequestedUpdate, WhereTheBundlesFolderCannotBeWrittenIsAborted) {
  folders.failure = Error("SUSparkleErrorDomain", 4012);

  check();
  answer(kUserUpdateChoiceInstall);

  EXPECT_THAT(delegate.calls, ElementsAre("loaded", "found Karno 1.1 1.1", "choice 1", "aborted 4012"));
  EXPECT_THAT(downloads.requests, IsEmpty());
}

TEST_F(RequestedUpdate, WithoutANetworkTellsTheUserWhy) {
  machine.network.bodies.clear();

  check();

  EXPECT_THAT(delegate.calls, ElementsAre("aborted 1002"));
  EXPECT_EQ(machine.alerts.shown().at(0).messageText, "CHECK_FAILED");
  EXPECT_THAT(machine.alerts.shown().at(0).informativeText, HasSubstr("appears to be offline"));
}

TEST_F(RequestedUpdate, OfAFeedThatIsNoXMLIsAborted) {
  machine.network.bodies[kFeed] = "<html>";

  check();

  EXPECT_THAT(delegate.calls, ElementsAre("aborted 1000"));
}

struct Address {
  const char* url;
  bool allowsLoopback;
  bool isRefused;
};

class AddressOfAFeed : public LinuxUpdaterTest, public ::testing::WithParamInterface<Address> {};

TEST_P(AddressOfAFeed, IsHttpsOrThisMachineWhereThatIsAllowed) {
  delegate.feed = GetParam().url;
  if (GetParam().allowsLoopback)
    machine.bundles.main().info.insert_or_assign("KarnoAllowsLoopbackUpdates", true);
  machine.network.bodies[GetParam().url] = feedOf("");

  check();

  EXPECT_EQ(machine.network.requests.empty(), GetParam().isRefused);
  EXPECT_EQ(delegate.calls.at(0).starts_with("aborted "), GetParam().isRefused);
}

INSTANTIATE_TEST_SUITE_P(Addresses, AddressOfAFeed,
                         ::testing::Values(Address{"https://a.example.org/feed", false, false},
                                           Address{"http://a.example.org/feed", false, true},
                                           Address{"http://a.example.org/feed", true, true},
                                           Address{"http://127.0.0.1:80/feed", false, true},
                                           Address{"http://127.0.0.1:80/feed", true, false},
                                           Address{"http://localhost/feed", true, false},
                                           Address{"http://localhost.example.org/feed", true, true},
                                           Address{"ftp://a/feed", true, true},
                                           Address{"file:///feed", true, true},
                                           Address{"feed.xml", true, true}, Address{"", true, true}));

TEST_F(RequestedUpdate, IsNotDownloadedOverPlainHttp) {
  machine.network.bodies[kFeed] =
      feedOf("<item><sparkle:version>2</sparkle:version><enclosure url=\"http://a.example.org/b\"/></item>");

  check();
  answer(kUserUpdateChoiceInstall);

  EXPECT_THAT(downloads.requests, IsEmpty());
  EXPECT_EQ(delegate.calls.back(), "aborted 3");
}

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

using ScheduledCheck = LinuxUpdaterTest;

TEST_F(ScheduledCheck, IsNotMadeUnlessItIsWanted) {
  EXPECT_EQ(updater.startUpdater(), std::nullopt);
  machine.runFor(3 * kDay);

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
  machine.runFor(3 * kDay);

  EXPECT_THAT(machine.network.requests, SizeIs(1));
  EXPECT_EQ(standard("SUEnableAutomaticChecks"), Value(false));
}

TEST_F(ScheduledCheck, IsNeverMadeMoreOftenThanOnceAnHour) {
  machine.network.bodies[kFeed] = feedOf("");
  settings.setObject(true, "SUEnableAutomaticChecks");
  settings.setObject(1, "SUScheduledCheckInterval");

  updater.startUpdater();
  machine.runFor(3 * 3600 - 700);

  EXPECT_THAT(machine.network.requests, SizeIs(3));
}

TEST_F(ScheduledCheck, IsNotKeptWaitingByALastOneInTheFuture) {
  settings.setObject(machine.clock.now() + std::chrono::hours(24 * 365), "SULastCheckTime");
  settings.setObject(true, "SUEnableAutomaticChecks");

  updater.startUpdater();
  machine.runFor(1);

  EXPECT_THAT(machine.network.requests, SizeIs(1));
}

TEST_F(ScheduledCheck, LeavesASkippedVersionAloneAndTellsNobody) {
  settings.setObject("1.1", "SUSkippedVersion");
  settings.setObject(true, "SUEnableAutomaticChecks");

  updater.startUpdater();
  machine.runFor(10);

  EXPECT_THAT(delegate.calls, ElementsAre("loaded", "nothing 1001 UP_TO_DATE_EXPLANATION"));
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
