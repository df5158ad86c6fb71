#include "platform/dispatch.h"

#include <gmock/gmock.h>

#include <array>
#include <atomic>
#include <limits>
#include <mutex>
#include <vector>

#include "elements_are.h"
#include "world.h"

namespace karno::test {
namespace {

using karno::test::ElementsAre;
using platform::Dispatch;
using platform::Queue;
using platform::QueuePriority;

constexpr double kMoment = 0.02;  // seconds
constexpr std::int64_t kMomentNanoseconds = 20'000'000;
constexpr std::int64_t kMinute = 60'000'000'000;
constexpr std::array kPriorities = {QueuePriority::Default, QueuePriority::Background};

// What blocks of any thread write down, in that order.
class Notes {
 public:
  void add(int number) {
    const std::lock_guard lock(mutex_);
    numbers_.push_back(number);
  }
  std::vector<int> all() const {
    const std::lock_guard lock(mutex_);
    return numbers_;
  }
  std::size_t count() const { return all().size(); }

 private:
  mutable std::mutex mutex_;
  std::vector<int> numbers_;
};

class DispatchContract : public Contract {
 protected:
  bool waitForNotes(std::size_t count) {
    return here_.waitUntil([=, this] { return notes_.count() >= count; });
  }

  void giveNumbersTo(Queue& queue) {
    for (int number = 1; number <= 5; ++number) queue.async([=, this] { notes_.add(number); });
  }

  double secondsOf(const std::function<void()>& work) {
    const platform::Date before = services_.clock.now();
    work();
    return platform::secondsBetween(before, services_.clock.now());
  }

  Queue& anyThread() { return dispatch_.globalQueue(QueuePriority::Default); }

  Dispatch& dispatch_ = services_.dispatch;
  Notes notes_;
};

TEST_P(DispatchContract, RunsTheBlocksOfTheMainQueueInTheOrderGiven) {
  giveNumbersTo(dispatch_.mainQueue());

  EXPECT_TRUE(waitForNotes(5));
  EXPECT_THAT(notes_.all(), ElementsAre(1, 2, 3, 4, 5));
}

TEST_P(DispatchContract, RunsTheBlocksOfTheMainOperationQueueInTheOrderGiven) {
  giveNumbersTo(dispatch_.mainOperationQueue());

  EXPECT_TRUE(waitForNotes(5));
  EXPECT_THAT(notes_.all(), ElementsAre(1, 2, 3, 4, 5));
}

TEST_P(DispatchContract, RunsABlockOfAMainQueueOnlyOnceItsGiverIsDone) {
  for (Queue* const queue : {&dispatch_.mainQueue(), &dispatch_.mainOperationQueue()}) {
    queue->async([=, this] {
      queue->async([this] { notes_.add(2); });
      notes_.add(1);
    });
  }

  EXPECT_EQ(notes_.count(), 0U);
  EXPECT_TRUE(waitForNotes(4));
  EXPECT_EQ(notes_.all().front(), 1);
  EXPECT_EQ(notes_.all().back(), 2);
}

TEST_P(DispatchContract, RunsNoBlockOfTheMainThreadWhileThatSleeps) {
  dispatch_.mainQueue().async([this] { notes_.add(2); });
  dispatch_.mainOperationQueue().async([this] { notes_.add(3); });
  anyThread().async([this] { notes_.add(1); });

  while (notes_.count() == 0) dispatch_.sleep(kMoment);
  dispatch_.sleep(kMoment);
  const std::vector<int> asleep = notes_.all();

  EXPECT_TRUE(waitForNotes(3));
  EXPECT_THAT(asleep, ElementsAre(1));
}

TEST_P(DispatchContract, KnowsTheMainThread) {
  const auto serial = dispatch_.makeSerialQueue("it.vantul.test.Serial");
  const auto note = [this](int bit) { notes_.add(dispatch_.isMainThread() ? bit : 0); };

  dispatch_.mainQueue().async([=] { note(1); });
  dispatch_.mainOperationQueue().async([=] { note(2); });
  serial->async([=] { note(4); });
  anyThread().async([=] { note(8); });

  EXPECT_TRUE(dispatch_.isMainThread());
  EXPECT_TRUE(waitForNotes(4));
  EXPECT_THAT(notes_.all(), testing::UnorderedElementsAre(0, 0, 1, 2));
}

TEST_P(DispatchContract, RunsTheBlocksOfASerialQueueInOrderAndOneAtATime) {
  const auto queue = dispatch_.makeSerialQueue("it.vantul.test.Serial");

  for (int number = 1; number <= 3; ++number) {
    queue->async([=, this] {
      notes_.add(number);
      dispatch_.sleep(kMoment / number);
      notes_.add(-number);
    });
  }

  EXPECT_TRUE(waitForNotes(6));
  EXPECT_THAT(notes_.all(), ElementsAre(1, -1, 2, -2, 3, -3));
}

TEST_P(DispatchContract, RunsTheBlocksOfASerialQueueThatWasLetGo) {
  auto queue = dispatch_.makeSerialQueue("it.vantul.test.Short");
  queue->async([this] { dispatch_.sleep(kMoment); });
  giveNumbersTo(*queue);

  queue.reset();

  EXPECT_TRUE(waitForNotes(5));
}

TEST_P(DispatchContract, LetsEveryOtherQueueRunWhileABlockOccupiesItsThread) {
  const auto serial = dispatch_.makeSerialQueue("it.vantul.test.Serial");
  std::atomic<bool> isReleased = false;
  std::vector<Queue*> queues = {serial.get()};
  for (const QueuePriority priority : kPriorities) queues.push_back(&dispatch_.globalQueue(priority));
  for (Queue* const queue : queues) {
    queue->async([&] {
      while (!isReleased) dispatch_.sleep(kMoment);
      notes_.add(2);
    });
  }

  for (const QueuePriority priority : kPriorities)
    dispatch_.globalQueue(priority).async([this] { notes_.add(1); });
  const bool ran = waitForNotes(2);
  const std::vector<int> ranMeanwhile = notes_.all();
  isReleased = true;

  EXPECT_TRUE(waitForNotes(5));
  EXPECT_TRUE(ran);
  EXPECT_THAT(ranMeanwhile, ElementsAre(1, 1));
}

TEST_P(DispatchContract, SleepsAsLongAsItIsTold) {
  EXPECT_GE(secondsOf([this] { dispatch_.sleep(0.05); }), 0.049);
  EXPECT_LT(secondsOf([this] { dispatch_.sleep(0); }), 1);
  EXPECT_LT(secondsOf([this] { dispatch_.sleep(-5); }), 1);
}

class GroupContract : public DispatchContract {
 protected:
  void leaveLater() {
    anyThread().async([this] {
      dispatch_.sleep(kMoment);
      group_->leave();
    });
  }

  const std::shared_ptr<platform::DispatchGroup> group_ = dispatch_.makeGroup();
};

TEST_P(GroupContract, IsMadeEmpty) {
  EXPECT_TRUE(group_->wait(kMinute));
  EXPECT_TRUE(group_->wait(0));
  EXPECT_TRUE(group_->wait(-1));
}

TEST_P(GroupContract, IsOnlyLookedAtWithoutTime) {
  group_->enter();

  EXPECT_LT(secondsOf([this] { EXPECT_FALSE(group_->wait(0)); }), 1);
  EXPECT_LT(secondsOf([this] { EXPECT_FALSE(group_->wait(-kMinute)); }), 1);
  group_->leave();
}

TEST_P(GroupContract, IsWaitedForAsLongAsAskedFor) {
  group_->enter();

  const double seconds = secondsOf([this] { EXPECT_FALSE(group_->wait(kMomentNanoseconds)); });

  EXPECT_GE(seconds, kMoment - 0.001);
  group_->leave();
}

TEST_P(GroupContract, EndsTheWaitOnceEveryoneHasLeft) {
  group_->enter();
  group_->enter();
  group_->leave();
  const bool isEmptyTooEarly = group_->wait(0);

  leaveLater();

  EXPECT_FALSE(isEmptyTooEarly);
  EXPECT_TRUE(group_->wait(kMinute));
}

TEST_P(GroupContract, TakesTheLongestTimeThereIs) {
  dispatch_.sleep(kMoment);
  group_->enter();

  leaveLater();

  EXPECT_TRUE(group_->wait(std::numeric_limits<std::int64_t>::max()));
}

TEST_P(GroupContract, CanBeUsedAgainAfterAWaitThatGaveUp) {
  group_->enter();
  const bool isEmptyAtFirst = group_->wait(kMomentNanoseconds);
  group_->leave();
  const bool isEmptyThen = group_->wait(0);
  group_->enter();

  leaveLater();

  EXPECT_FALSE(isEmptyAtFirst);
  EXPECT_TRUE(isEmptyThen);
  EXPECT_TRUE(group_->wait(kMinute));
}

TEST_P(GroupContract, WakesEverybodyWhoWaits) {
  group_->enter();
  for (int number = 1; number <= 3; ++number)
    anyThread().async([=, this] { notes_.add(group_->wait(kMinute) ? 1 : 0); });

  leaveLater();

  EXPECT_TRUE(waitForNotes(3));
  EXPECT_THAT(notes_.all(), ElementsAre(1, 1, 1));
}

TEST_P(GroupContract, RunsNoBlockOfTheMainThreadWhileThatWaits) {
  group_->enter();
  dispatch_.mainQueue().async([this] { notes_.add(1); });
  dispatch_.mainOperationQueue().async([this] { notes_.add(2); });

  group_->wait(kMomentNanoseconds);
  group_->leave();

  EXPECT_EQ(notes_.count(), 0U);
  EXPECT_TRUE(waitForNotes(2));
}

INSTANTIATE_TEST_SUITE_P(Fake, DispatchContract, testing::Values(makeFakeWorld));
INSTANTIATE_TEST_SUITE_P(Native, DispatchContract, testing::Values(makeNativeWorld));
INSTANTIATE_TEST_SUITE_P(Fake, GroupContract, testing::Values(makeFakeWorld));
INSTANTIATE_TEST_SUITE_P(Native, GroupContract, testing::Values(makeNativeWorld));

}  // namespace
}  // namespace karno::test
