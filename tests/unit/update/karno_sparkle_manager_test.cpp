#include "update/karno_sparkle_manager.h"

#include <gmock/gmock.h>

#include "elements_are.h"
#include "fake_platform.h"

namespace karno {
namespace {

using karno::test::ElementsAre;
using test::FakePlatform;
using test::Line;
using ::testing::IsEmpty;

constexpr const char* kMarker = "/Users/tester/KARNOUPGRADE.debug";
constexpr const char* kFeed = "https://updates.vantul.it/updates/macos/appcast.eddsa.xml";
constexpr const char* kDebugFeed = "https://updates.vantul.it/updates/macos/appcast.eddsa.debug.xml";

std::string feed() { return KarnoSparkleManager::instance().feedURL(); }

TEST(UpdateFeed, IsTheProductionFeedWithoutAMarker) {
  FakePlatform machine;

  EXPECT_EQ(feed(), kFeed);
}

TEST(UpdateFeed, TakesItsHostFromTheBundle) {
  FakePlatform machine;
  machine.bundles.main().info.insert_or_assign("KarnoUpdateFeedHost", "feed.example.org:8443");

  EXPECT_EQ(feed(), "https://feed.example.org:8443/updates/macos/appcast.eddsa.xml");
}

TEST(UpdateFeed, HasThePublicHostWhereTheBundleNamesNone) {
  FakePlatform machine;

  machine.bundles.main().info.insert_or_assign("KarnoUpdateFeedHost", "");
  EXPECT_EQ(feed(), kFeed);
  machine.bundles.main().info.insert_or_assign("KarnoUpdateFeedHost", 7);
  EXPECT_EQ(feed(), kFeed);
}

TEST(UpdateFeed, IsChosenAfreshEveryTime) {
  FakePlatform machine;
  EXPECT_EQ(feed(), kFeed);

  machine.files.addFile(kMarker, "");

  EXPECT_EQ(feed(), kDebugFeed);
}

struct Marker {
  std::string text;
  std::string feed;
};

void PrintTo(const Marker& marker, std::ostream* out) { *out << "'" << marker.text << "'"; }

class FeedOfMarker : public ::testing::TestWithParam<Marker> {};

TEST_P(FeedOfMarker, IsUsedWithoutALine) {
  FakePlatform machine;
  machine.files.addFile(kMarker, GetParam().text);

  EXPECT_EQ(feed(), GetParam().feed);
  EXPECT_THAT(machine.console(), IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(
    Markers, FeedOfMarker,
    ::testing::Values(Marker{"", kDebugFeed}, Marker{" \n\t\n", kDebugFeed},
                      Marker{"https://a/\xFF", kDebugFeed},
                      Marker{"https://localhost:8443/feed.xml", "https://localhost:8443/feed.xml"},
                      Marker{" \n https://a.b/c?d=e%20f#g \r\n", "https://a.b/c?d=e%20f#g"},
                      Marker{"https://[::1]:8443/feed.xml", "https://[::1]:8443/feed.xml"},
                      Marker{"https://user:word@[fe80::1]", "https://user:word@[fe80::1]"},
                      Marker{"https://a/?[b]", "https://a/?[b]"}, Marker{"feed.xml", "feed.xml"}));

class BadMarker : public ::testing::TestWithParam<const char*> {};

TEST_P(BadMarker, IsWarnedOf) {
  FakePlatform machine;
  machine.files.addFile(kMarker, GetParam());

  EXPECT_EQ(feed(), kDebugFeed);
  EXPECT_THAT(machine.consoleMessages(),
              ElementsAre(Line("WARN", std::string("Sparkle[FEED] Cannot parse url in ") + kMarker)));
}

INSTANTIATE_TEST_SUITE_P(Feed, BadMarker,
                         ::testing::Values("two words", "https://a/%zz", "https://a/<b>", "https://a/ü",
                                           "https://a/b\nhttps://c/d", "http://[::1", "http://::1]/",
                                           "http://[::1]x/", "https://[words]/", "//[::1"));

TEST(UpdateFeed, OfAMarkerThatCannotBeReadIsTheDebugFeed) {
  FakePlatform machine;
  machine.files.addFile(kMarker, "https://a/b");
  machine.files.failRead(kMarker, 13);

  EXPECT_EQ(feed(), kDebugFeed);
}

TEST(RequestedCheck, NamesTheFeed) {
  FakePlatform machine;
  machine.files.addFile(kMarker, "https://a/b");

  KarnoSparkleManager::instance().checkForUpdates();

  EXPECT_EQ(machine.updater.checks, 1);
  EXPECT_THAT(machine.consoleMessages(),
              ElementsAre(Line("INFO", "Sparkle[CHECK] Checking for updates (https://a/b)")));
}

TEST(RequestedCheck, WarnsOfABadMarkerOnce) {
  FakePlatform machine;
  machine.files.addFile(kMarker, "http://[::1");

  KarnoSparkleManager::instance().checkForUpdates();
  machine.updater.delegate().feedURLStringForUpdater(machine.updater.handle());
  machine.updater.delegate().didFinishLoadingAppcast(machine.updater.handle());

  const std::string url = kDebugFeed;
  EXPECT_THAT(machine.consoleMessages(),
              ElementsAre(Line("WARN", std::string("Sparkle[FEED] Cannot parse url in ") + kMarker),
                          Line("INFO", "Sparkle[CHECK] Checking for updates (" + url + ")"),
                          Line("INFO", "Sparkle[UPDATE] Downloaded appcast (" + url + ")")));
}

TEST(ScheduledCheckOfTheUpdater, WarnsOfABadMarkerOnceAsWell) {
  FakePlatform machine;
  machine.files.addFile(kMarker, "http://[::1");
  KarnoSparkleManager::instance().sparkleUpdater();

  machine.updater.delegate().feedURLStringForUpdater(machine.updater.handle());
  machine.updater.delegate().didFinishLoadingAppcast(machine.updater.handle());

  EXPECT_THAT(
      machine.consoleMessages(),
      ElementsAre(Line("WARN", std::string("Sparkle[FEED] Cannot parse url in ") + kMarker),
                  Line("INFO", std::string("Sparkle[UPDATE] Downloaded appcast (") + kDebugFeed + ")")));
}

TEST(RequestedCheck, AsksAlsoWhenTheUpdaterCannotCheckAtThisMoment) {
  FakePlatform machine;
  machine.updater.canCheck = false;

  KarnoSparkleManager::instance().checkForUpdates();

  EXPECT_EQ(machine.updater.checks, 1);
}

TEST(AutomaticChecks, DoNotShowInTheProperty) {
  FakePlatform machine;

  KarnoSparkleManager::instance().setCheckForUpdatesAutomatically(true);

  EXPECT_FALSE(KarnoSparkleManager::instance().checkForUpdatesAutomatically());
  EXPECT_THAT(machine.updater.automaticChecks, ElementsAre(true));
  EXPECT_THAT(machine.consoleMessages(),
              ElementsAre(Line("INFO", "Sparkle[CONFIG] Check updates automatically=1")));
}

}  // namespace
}  // namespace karno
