#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <functional>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "../../support/hand_queue.h"
#include "../../support/private_bus.h"
#include "../../support/told_notices.h"
#include "../../support/wait_until.h"
#include "elements_are.h"
#include "notification_listener.h"
#include "platform/linux/notifications/bus_poster.h"
#include "platform/linux/notifications/distributed_notifications.h"
#include "sleeps_of_thread.h"

namespace karno::platform {
namespace {

using karno::test::ElementsAre;
using std::chrono::milliseconds;
using test::HandQueue;
using test::kName;
using test::kObject;
using test::Listener;
using test::notification;
using test::PrivateBus;
using test::sleepsOfThread;
using test::ToldNotices;
using test::waitUntil;
using testing::MatchesRegex;
using testing::SizeIs;

constexpr const char* kOtherName = "it.vantul.test.Other";
constexpr const char* kConnected =
    "INFO Notifications: connected to the session bus, they are received from now on";
constexpr const char* kGone = "WARN Notifications: the session bus is gone\\. Reason: [^\n]+";
constexpr const char* kNone =
    "WARN Notifications: no session bus, none will be received until there is one\\. Reason: [^\n]+";
constexpr int kEnds = 5;
constexpr milliseconds kLongEnoughToReconnect(200);
constexpr BusListener::Waits kShort{.firstPause = milliseconds(20), .longestPause = milliseconds(100)};
constexpr BusListener::Waits kNextDay{.firstPause = std::chrono::hours(24),
                                      .longestPause = std::chrono::hours(24)};

// A session bus that ends and comes back, and one process that observes and posts on it.
class BusThatComesBack : public testing::Test {
 protected:
  std::unique_ptr<BusNotifications> makeCentre(const BusListener::Waits& waits = kShort) {
    return std::make_unique<BusNotifications>(main, told.notices(), waits);
  }

  bool waitForNotices(std::size_t count) const {
    return waitUntil([&] { return told.lines().size() >= count; });
  }

  bool waitForConnections(std::ptrdiff_t count) const {
    return waitUntil([&] { return told.count(kConnected) >= count; });
  }

  // The notices of the end and of the new connection are the next two.
  bool endAndComeBack() {
    const std::size_t before = told.lines().size();
    bus.stop();
    if (!waitForNotices(before + 1)) return false;
    bus.start();
    return waitForNotices(before + 2);
  }

  bool hears(const Listener& listener, std::size_t count) {
    return main.runUntil([&] { return listener.heard().size() >= count; });
  }

  PrivateBus bus;
  HandQueue main;
  ToldNotices told;
};

TEST_F(BusThatComesBack, IsHeardAgain) {
  const auto centre = makeCentre();
  const Listener listener(*centre, kName, kObject);
  ASSERT_TRUE(centre->post(notification(kName, kObject, {{"message", "before"}})));
  ASSERT_TRUE(hears(listener, 1));

  ASSERT_TRUE(endAndComeBack());
  const bool posted = centre->post(notification(kName, kObject, {{"message", "after"}}));

  EXPECT_TRUE(posted);
  EXPECT_TRUE(hears(listener, 2));
  EXPECT_THAT(listener.messages(), ElementsAre("before", "after"));
}

TEST_F(BusThatComesBack, IsToldOnceAsGoneAndOnceAsBack) {
  const auto centre = makeCentre();
  const Listener listener(*centre, kName, kObject);

  bus.stop();
  std::this_thread::sleep_for(kLongEnoughToReconnect);  // several attempts fail
  const std::vector<std::string> whileGone = told.lines();
  bus.start();
  ASSERT_TRUE(waitForNotices(2));
  std::this_thread::sleep_for(kLongEnoughToReconnect);

  EXPECT_THAT(whileGone, testing::ElementsAre(MatchesRegex(kGone)));
  EXPECT_THAT(told.lines(), testing::ElementsAre(MatchesRegex(kGone), kConnected));
}

TEST_F(BusThatComesBack, IsHeardByWhoWasThereBeforeIt) {
  bus.stop();
  const auto centre = makeCentre();
  const Listener listener(*centre, kName, kObject);

  bus.start();
  ASSERT_TRUE(waitForNotices(2));
  centre->post(notification(kName, kObject, {{"message", "first"}}));

  EXPECT_TRUE(hears(listener, 1));
  EXPECT_THAT(listener.messages(), ElementsAre("first"));
  EXPECT_THAT(told.lines(), testing::ElementsAre(MatchesRegex(kNone), kConnected));
}

TEST_F(BusThatComesBack, IsHeardByEachRegistrationOnce) {
  const auto centre = makeCentre();
  const Listener once(*centre, kName, kObject);
  Listener twice(*centre, kName, kObject);
  twice.observe(kName, kObject);
  const Listener other(*centre, kOtherName, kObject);

  ASSERT_TRUE(endAndComeBack());
  ASSERT_TRUE(endAndComeBack());
  centre->post(notification(kName, kObject, {{"message", "x"}}));
  centre->post(notification(kOtherName, kObject, {{"message", "y"}}));
  ASSERT_TRUE(hears(other, 1));
  main.runFor(kLongEnoughToReconnect);

  EXPECT_THAT(once.messages(), ElementsAre("x"));
  EXPECT_THAT(twice.messages(), ElementsAre("x", "x"));
  EXPECT_THAT(other.messages(), ElementsAre("y"));
}

TEST_F(BusThatComesBack, IsHeardByWhoCameMeanwhileAndNotByWhoWent) {
  const auto centre = makeCentre();
  const Listener stays(*centre, kName, kObject);
  const Listener goes(*centre, kName, kObject);

  bus.stop();
  ASSERT_TRUE(waitForNotices(1));
  centre->removeObserver(&goes);
  const Listener comes(*centre, kOtherName, kObject);
  bus.start();
  ASSERT_TRUE(waitForNotices(2));
  centre->post(notification(kName, kObject, {{"message", "x"}}));
  centre->post(notification(kOtherName, kObject, {{"message", "y"}}));
  ASSERT_TRUE(hears(comes, 1));
  main.runFor(kLongEnoughToReconnect);

  EXPECT_THAT(stays.messages(), ElementsAre("x"));
  EXPECT_THAT(comes.messages(), ElementsAre("y"));
  EXPECT_THAT(goes.messages(), SizeIs(0));
}

TEST_F(BusThatComesBack, IsHeardHoweverOftenItEnds) {
  const auto centre = makeCentre();
  const Listener listener(*centre, kName, kObject);
  std::vector<std::string> expected;

  for (int end = 1; end <= kEnds; ++end) {
    ASSERT_TRUE(endAndComeBack()) << "after the end " << end;
    expected.push_back(std::to_string(end));
    ASSERT_TRUE(centre->post(notification(kName, kObject, {{"message", expected.back()}})));
    ASSERT_TRUE(hears(listener, expected.size())) << "after the end " << end;
  }

  EXPECT_EQ(listener.messages(), expected);
  EXPECT_EQ(told.count(kConnected), kEnds);
}

// What is posted while nobody listens is lost, and nothing else.
TEST_F(BusThatComesBack, IsHeardInOrderWhileSomebodyPostsAllTheTime) {
  const auto centre = makeCentre();
  const Listener listener(*centre, kName, kObject);
  std::atomic<bool> isOver = false;
  std::thread sender([&] {
    BusPoster poster(told.notices());
    for (std::int64_t number = 0; !isOver; ++number) {
      poster.post(notification(kName, kObject, {{"number", number}}));
      std::this_thread::sleep_for(milliseconds(1));
    }
  });

  std::vector<std::size_t> heardAfterAnEnd;
  for (int end = 1; end <= 3; ++end) {
    bus.stop();
    std::this_thread::sleep_for(milliseconds(50));
    bus.start();
    waitForConnections(end);
    const std::size_t before = listener.heard().size();
    hears(listener, before + 20);
    heardAfterAnEnd.push_back(listener.heard().size() - before);
  }
  isOver = true;
  sender.join();

  std::vector<std::int64_t> numbers;
  for (const auto& heard : listener.heard()) {
    numbers.push_back(*heard.userInfo.at("number").get<std::int64_t>());
  }
  EXPECT_THAT(heardAfterAnEnd, testing::Each(testing::Ge(20U)));
  EXPECT_TRUE(std::is_sorted(numbers.begin(), numbers.end(), std::less_equal<>())) << "or heard twice";
}

TEST_F(BusThatComesBack, IsPostedOnByAConnectionOfItsOwn) {
  const auto centre = makeCentre();
  const Listener listener(*centre, kName, kObject);
  BusPoster poster(told.notices());
  ASSERT_TRUE(poster.post(notification(kName, kObject, {{"message", "before"}})));
  ASSERT_TRUE(hears(listener, 1));

  ASSERT_TRUE(endAndComeBack());
  const bool posted = poster.post(notification(kName, kObject, {{"message", "after"}}));
  const bool wasHeard = hears(listener, 2);

  EXPECT_TRUE(posted);
  EXPECT_TRUE(wasHeard);
  EXPECT_THAT(listener.messages(), ElementsAre("before", "after"));
}

TEST_F(BusThatComesBack, TakesPostsAgainThatFailedMeanwhile) {
  BusPoster poster(told.notices());
  ASSERT_TRUE(poster.post(notification(kName, kObject)));

  bus.stop();
  const bool first = poster.post(notification(kName, kObject));
  const bool second = poster.post(notification(kName, kObject));
  bus.start();
  const bool third = poster.post(notification(kName, kObject));

  EXPECT_FALSE(first);
  EXPECT_FALSE(second);
  EXPECT_TRUE(third);
  EXPECT_THAT(told.lines(), testing::ElementsAre(MatchesRegex(
                                "WARN Notifications: failed to post on the session bus\\. Reason: .+")));
}

TEST_F(BusThatComesBack, IsNotWaitedForWithATurningWheel) {
  const auto centre = makeCentre(kNextDay);
  const Listener listener(*centre, kName, kObject);
  bus.stop();
  ASSERT_TRUE(waitForNotices(1));
  std::this_thread::sleep_for(kLongEnoughToReconnect);

  const std::string before = sleepsOfThread("Notifications");
  ::sleep(1);
  const std::string after = sleepsOfThread("Notifications");

  EXPECT_FALSE(before.empty());
  EXPECT_EQ(after, before);
}

TEST_F(BusThatComesBack, IsNotWaitedForByWhoEnds) {
  auto centre = makeCentre(kNextDay);
  auto listener = std::make_unique<Listener>(*centre, kName, kObject);
  bus.stop();
  ASSERT_TRUE(waitForNotices(1));

  listener.reset();
  centre.reset();

  EXPECT_THAT(told.lines(), SizeIs(1));
}

TEST_F(BusThatComesBack, IsNotLookedForWhenNobodyObserves) {
  const auto centre = makeCentre();
  auto listener = std::make_unique<Listener>(*centre, kName, kObject);
  bus.stop();
  ASSERT_TRUE(waitForNotices(1));

  listener.reset();
  bus.start();
  std::this_thread::sleep_for(kLongEnoughToReconnect);

  EXPECT_THAT(told.lines(), SizeIs(1));
}

TEST_F(BusThatComesBack, KeepsNobodyWaitingWhoObservesWhileItStandsStill) {
  BusListener::Waits waits = kShort;
  waits.observing = milliseconds(50);
  const auto centre = makeCentre(waits);
  bus.halt();

  const auto before = std::chrono::steady_clock::now();
  const Listener listener(*centre, kName, kObject);
  const auto waited = std::chrono::steady_clock::now() - before;
  bus.goOn();
  const bool wasHeard = waitUntil([&] {
    centre->post(notification(kName, kObject, {{"message", "x"}}));
    main.runFor(milliseconds(20));
    return !listener.heard().empty();
  });

  EXPECT_TRUE(wasHeard);
  EXPECT_LT(waited, std::chrono::seconds(30));  // the bus library waits 90 seconds
}

}  // namespace
}  // namespace karno::platform
