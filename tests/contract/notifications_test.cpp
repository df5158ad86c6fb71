#include <gmock/gmock.h>

#include <chrono>
#include <limits>
#include <numeric>

#include "../platform/support/private_bus.h"
#include "elements_are.h"
#include "platform/distributed_notifications.h"
#include "printing.h"
#include "world.h"

namespace karno::test {
namespace {

using karno::test::ElementsAre;
using platform::DistributedNotification;
using platform::DistributedNotifications;
using platform::Value;
using ::testing::IsEmpty;

constexpr const char* kName = "it.vantul.test.Name";
constexpr const char* kObject = "it.vantul.test.Object";

// Dates travel as seconds in a floating-point number.
constexpr platform::Date kDate =
    platform::Date(std::chrono::sys_days(std::chrono::year(1987) / 6 / 5)) + std::chrono::milliseconds(500);

// This system's services with a session bus for them alone.
std::unique_ptr<World> makeNativeWorldWithBus() {
  static const PrivateBus bus;
  return makeNativeWorld();
}

DistributedNotification numbered(std::int64_t number) {
  return {.name = kName, .object = kObject, .userInfo = {{"number", number}}};
}

class NotificationsContract : public Contract {
 protected:
  // Who listens and what it has heard.
  struct Listener {
    std::vector<DistributedNotification> heard;

    std::vector<std::int64_t> numbers() const {
      std::vector<std::int64_t> numbers;
      for (const auto& each : heard) numbers.push_back(*each.userInfo.at("number").get<std::int64_t>());
      return numbers;
    }
  };

  ~NotificationsContract() override {
    for (Listener* const listener : {&first_, &second_}) centre_.removeObserver(listener);
  }

  void observe(Listener& listener, const std::string& name = kName, const std::string& object = kObject) {
    centre_.addObserver(&listener, name, object,
                        [&listener](const auto& notification) { listener.heard.push_back(notification); });
  }

  void postNumbers(std::int64_t from, std::int64_t to) {
    for (std::int64_t number = from; number <= to; ++number) EXPECT_TRUE(centre_.post(numbered(number)));
  }

  bool waitFor(const Listener& listener, std::size_t count) {
    return here_.waitUntil([&] { return listener.heard.size() >= count; });
  }

  DistributedNotifications& centre_ = services_.distributedNotifications;
  Listener first_;
  Listener second_;
};

TEST_P(NotificationsContract, CarryNameObjectAndUserInformation) {
  const Value::Dictionary userInfo = {{"", "empty key"},
                                      {"truth", true},
                                      {"least", std::numeric_limits<std::int64_t>::min()},
                                      {"most", std::numeric_limits<std::int64_t>::max()},
                                      {"fraction", -2.5},
                                      {"text", "Grüße,\n日本 🙂"},
                                      {"empty text", ""},
                                      {"date", kDate},
                                      {"data", Value::Data{std::byte{0}, std::byte{255}}},
                                      {"list", Value::Array{1, "two", Value::Array{}, Value::Dictionary{}}},
                                      {"dictionary", Value::Dictionary{{"inner", Value::Array{false}}}}};
  observe(first_);

  centre_.post({.name = kName, .object = kObject, .userInfo = userInfo});

  ASSERT_TRUE(waitFor(first_, 1));
  EXPECT_EQ(first_.heard.front().name, kName);
  EXPECT_EQ(first_.heard.front().object, kObject);
  EXPECT_EQ(first_.heard.front().userInfo, userInfo);
}

TEST_P(NotificationsContract, ArriveInTheOrderPosted) {
  std::vector<std::int64_t> expected(100);
  std::iota(expected.begin(), expected.end(), 1);
  observe(first_);

  postNumbers(1, 100);

  EXPECT_TRUE(waitFor(first_, 100));
  EXPECT_EQ(first_.numbers(), expected);
}

TEST_P(NotificationsContract, ReachThoseAloneWhoObserveExactlyThisNameAndObject) {
  observe(first_);

  for (const char* const name : {"it.vantul.test.NAME", "it.vantul.test", "it.vantul.test.Name.more", ""})
    centre_.post({.name = name, .object = kObject, .userInfo = {{"number", 1}}});
  for (const auto& object : {std::optional<std::string>("it.vantul.test.object"),
                             std::optional<std::string>(""), std::optional<std::string>()})
    centre_.post({.name = kName, .object = object, .userInfo = {{"number", 2}}});
  postNumbers(3, 3);

  EXPECT_TRUE(waitFor(first_, 1));
  EXPECT_THAT(first_.numbers(), ElementsAre(std::int64_t{3}));
}

TEST_P(NotificationsContract, ReachEveryObserver) {
  observe(first_);
  observe(second_);

  postNumbers(1, 2);

  EXPECT_TRUE(waitFor(first_, 2) && waitFor(second_, 2));
  EXPECT_THAT(first_.numbers(), ElementsAre(std::int64_t{1}, std::int64_t{2}));
  EXPECT_THAT(second_.numbers(), ElementsAre(std::int64_t{1}, std::int64_t{2}));
}

TEST_P(NotificationsContract, AreToldTwiceToWhoWasAddedTwice) {
  observe(first_);
  observe(first_);

  postNumbers(1, 2);

  EXPECT_TRUE(waitFor(first_, 4));
  EXPECT_THAT(first_.numbers(),
              ElementsAre(std::int64_t{1}, std::int64_t{1}, std::int64_t{2}, std::int64_t{2}));
}

TEST_P(NotificationsContract, AreToldOnTheMainThreadAfterThePost) {
  bool isMainThread = false;
  centre_.addObserver(&first_, kName, kObject, [&](const auto& notification) {
    isMainThread = services_.dispatch.isMainThread();
    first_.heard.push_back(notification);
  });

  postNumbers(1, 1);
  services_.dispatch.sleep(0.05);
  const std::size_t heardTooEarly = first_.heard.size();

  EXPECT_TRUE(waitFor(first_, 1));
  EXPECT_EQ(heardTooEarly, 0U);
  EXPECT_TRUE(isMainThread);
}

TEST_P(NotificationsContract, CanBePostedByAnyThread) {
  observe(first_);

  services_.dispatch.globalQueue(platform::QueuePriority::Default).async([this] { postNumbers(1, 1); });

  EXPECT_TRUE(waitFor(first_, 1));
}

TEST_P(NotificationsContract, AreNotToldToWhoWasRemovedMeanwhile) {
  observe(first_);
  observe(first_, kName, "it.vantul.test.Other");
  observe(second_);

  postNumbers(1, 1);
  centre_.removeObserver(&first_);
  postNumbers(2, 2);

  EXPECT_TRUE(waitFor(second_, 2));
  EXPECT_THAT(first_.heard, IsEmpty());
}

TEST_P(NotificationsContract, AreNotToldToWhoIsRemovedByAHandler) {
  centre_.addObserver(&first_, kName, kObject, [&](const auto& notification) {
    first_.heard.push_back(notification);
    centre_.removeObserver(&first_);
    centre_.removeObserver(&second_);
  });
  observe(second_);
  Listener third;
  observe(third);

  postNumbers(1, 2);
  const bool hasHeard = waitFor(third, 2);
  centre_.removeObserver(&third);

  EXPECT_TRUE(hasHeard);
  EXPECT_THAT(first_.numbers(), ElementsAre(std::int64_t{1}));
  EXPECT_THAT(second_.numbers(), IsEmpty());
}

TEST_P(NotificationsContract, ReachAnObserverThatIsAddedAfterwardsOnlyFromThenOn) {
  observe(first_);
  postNumbers(1, 1);
  ASSERT_TRUE(waitFor(first_, 1));

  centre_.post({.name = "it.vantul.test.Late", .object = kObject, .userInfo = {{"number", 2}}});
  observe(second_, "it.vantul.test.Late");
  centre_.post({.name = "it.vantul.test.Late", .object = kObject, .userInfo = {{"number", 3}}});

  EXPECT_TRUE(here_.waitUntil([this] { return !second_.heard.empty() && second_.numbers().back() == 3; }));
  EXPECT_THAT(second_.numbers(), ElementsAre(std::int64_t{3}));
}

TEST_P(NotificationsContract, AreAlsoObservedByAHandlersOwnObserver) {
  centre_.addObserver(&first_, kName, kObject, [&](const auto& notification) {
    first_.heard.push_back(notification);
    if (first_.heard.size() == 1) {
      observe(second_);
      postNumbers(2, 2);
    }
  });

  postNumbers(1, 1);

  EXPECT_TRUE(waitFor(second_, 1));
  EXPECT_THAT(second_.numbers(), ElementsAre(std::int64_t{2}));
}

INSTANTIATE_TEST_SUITE_P(Fake, NotificationsContract, testing::Values(makeFakeWorld));
INSTANTIATE_TEST_SUITE_P(Native, NotificationsContract, testing::Values(makeNativeWorldWithBus));

}  // namespace
}  // namespace karno::test
