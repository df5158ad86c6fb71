#include "platform/linux/updater/feed/item_choice.h"

#include <gtest/gtest.h>

#include "fake_system.h"

namespace karno::platform::updates {
namespace {

FeedItem itemOf(const std::string& version) {
  FeedItem item;
  item.version = version;
  item.downloadURL = "https://a/b";
  return item;
}

struct ItemChoice : ::testing::Test {
  // The chosen version, or the reason why there is none as a number.
  std::string choose(const std::vector<FeedItem>& items) {
    const auto choice = chooseItem(
        items, {.version = "1.0", .system = system, .skippedVersion = skipped, .isUserAsking = asks});
    if (const auto* const item = std::get_if<FeedItem>(&choice)) return item->version;
    return "none " + std::to_string(static_cast<int>(std::get<NothingToOffer>(choice)));
  }
  static std::string none(NothingToOffer reason) {
    return "none " + std::to_string(static_cast<int>(reason));
  }

  test::FakeSystemVersion system;  // 14.5.0
  std::string skipped;
  bool asks = false;
};

TEST_F(ItemChoice, IsTheNewestWhateverTheOrder) {
  EXPECT_EQ(choose({itemOf("1.1"), itemOf("1.10"), itemOf("1.9"), itemOf("0.5")}), "1.10");
}

TEST_F(ItemChoice, IsNothingOfAnEmptyFeedOfTheSameOrOfAnOlderVersion) {
  EXPECT_EQ(choose({}), none(NothingToOffer::NoItem));
  EXPECT_EQ(choose({itemOf("1.0")}), none(NothingToOffer::OnNewest));
  EXPECT_EQ(choose({itemOf("0.9")}), none(NothingToOffer::NewerThanFeed));
}

TEST_F(ItemChoice, PassesOverOtherChannelsAndOtherSystems) {
  FeedItem beta = itemOf("3");
  beta.channel = "beta";
  FeedItem windows = itemOf("4");
  windows.operatingSystem = "windows";
  FeedItem mac = itemOf("2");
  mac.operatingSystem = "macos";

  EXPECT_EQ(choose({beta, windows, mac}), "2");
  EXPECT_EQ(choose({beta, windows}), none(NothingToOffer::NoItem));
}

// One feed can serve both systems, also while one of them waits for its release.
TEST_F(ItemChoice, IsOneForThisSystemWhereTheFeedHasAny) {
  FeedItem mac = itemOf("3");
  FeedItem linux = itemOf("2");
  linux.operatingSystem = "linux";

  EXPECT_EQ(choose({mac, linux}), "2");
  EXPECT_EQ(choose({linux, mac}), "2");
}

TEST_F(ItemChoice, IsOneForAMacWhereOnlyAnotherChannelHasOneForThisSystem) {
  FeedItem mac = itemOf("2");
  FeedItem beta = itemOf("3");
  beta.operatingSystem = "linux";
  beta.channel = "beta";

  EXPECT_EQ(choose({mac, beta}), "2");
}

struct Concern {
  std::string criticalBelow;
  std::vector<std::string> informationVersions;
  std::vector<std::string> informationBelow;
  bool isCritical;
  bool isInformationOnly;
};

class ConcernOfAnItem : public ItemChoice, public ::testing::WithParamInterface<Concern> {};

// The host has version 1.0.
TEST_P(ConcernOfAnItem, IsByTheHostsVersion) {
  FeedItem item = itemOf("2");
  item.isCritical = true;
  item.criticalBelow = GetParam().criticalBelow;
  item.informationVersions = GetParam().informationVersions;
  item.informationBelow = GetParam().informationBelow;

  const auto choice =
      chooseItem({item}, {.version = "1.0", .system = system, .skippedVersion = "", .isUserAsking = false});

  const FeedItem& chosen = std::get<FeedItem>(choice);
  EXPECT_EQ(chosen.isCritical, GetParam().isCritical);
  EXPECT_EQ(chosen.isInformationOnly, GetParam().isInformationOnly);
}

INSTANTIATE_TEST_SUITE_P(
    Versions, ConcernOfAnItem,
    ::testing::Values(Concern{"", {}, {}, true, false}, Concern{"1.0", {}, {}, false, false},
                      Concern{"1.1", {}, {}, true, false}, Concern{"", {"0.9", "1"}, {}, true, true},
                      Concern{"", {"0.9"}, {}, true, false}, Concern{"", {}, {"1.0"}, true, false},
                      Concern{"", {}, {"0.5", "1.1"}, true, true}));

TEST_F(ItemChoice, IsNotASkippedOneThatIsCriticalForOlderHostsOnly) {
  FeedItem item = itemOf("2");
  item.isCritical = true;
  item.criticalBelow = "0.9";
  skipped = "2";

  EXPECT_EQ(choose({item}), none(NothingToOffer::Skipped));
}

TEST_F(ItemChoice, IsTheNewestThatThisSystemCanRun) {
  FeedItem newer = itemOf("3");
  newer.minimumSystemVersion = "15";
  FeedItem older = itemOf("2");
  older.minimumSystemVersion = "14.5";

  EXPECT_EQ(choose({newer, older}), "2");
  EXPECT_EQ(choose({newer}), none(NothingToOffer::SystemTooOld));
  newer.minimumSystemVersion = "99999999999";
  EXPECT_EQ(choose({newer}), none(NothingToOffer::SystemTooOld));
}

TEST_F(ItemChoice, MayEndWithASystem) {
  FeedItem before = itemOf("2");
  before.maximumSystemVersion = "14.4.9";
  FeedItem until = itemOf("2");
  until.maximumSystemVersion = "14.5.0";

  EXPECT_EQ(choose({before}), none(NothingToOffer::SystemTooNew));
  EXPECT_EQ(choose({until}), "2");
}

TEST_F(ItemChoice, NeedsAHostThatCanTakeTheStep) {
  FeedItem far = itemOf("3");
  far.minimumUpdateVersion = "2";

  EXPECT_EQ(choose({far, itemOf("2")}), "2");
  EXPECT_EQ(choose({far}), none(NothingToOffer::NoItem));
}

TEST_F(ItemChoice, LeavesTheSkippedVersionAloneButNotANewerOne) {
  skipped = "2";

  EXPECT_EQ(choose({itemOf("2")}), none(NothingToOffer::Skipped));
  EXPECT_EQ(choose({itemOf("1.5")}), none(NothingToOffer::Skipped));
  EXPECT_EQ(choose({itemOf("2.0.1")}), "2.0.1");
}

TEST_F(ItemChoice, IsASkippedVersionWhenItIsCriticalOrTheUserAsks) {
  skipped = "2";
  FeedItem critical = itemOf("2");
  critical.isCritical = true;
  EXPECT_EQ(choose({critical}), "2");

  asks = true;

  EXPECT_EQ(choose({itemOf("2")}), "2");
}

}  // namespace
}  // namespace karno::platform::updates
