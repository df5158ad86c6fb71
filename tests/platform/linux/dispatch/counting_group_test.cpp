#include "platform/linux/dispatch/counting_group.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <limits>
#include <memory>
#include <thread>

#include "platform/linux/dispatch/dispatch.h"
#include "platform/platform.h"

namespace karno::platform {
namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

constexpr std::int64_t kMillisecond = 1'000'000;
constexpr std::int64_t kForEver = std::numeric_limits<std::int64_t>::max();

TEST(DispatchGroup, IsMadeEmpty) {
  const std::shared_ptr<DispatchGroup> group = host().dispatch.makeGroup();

  EXPECT_TRUE(group->wait(0));
  EXPECT_TRUE(group->wait(-1));
  EXPECT_TRUE(group->wait(std::numeric_limits<std::int64_t>::min()));
  EXPECT_TRUE(group->wait(kForEver));
}

TEST(DispatchGroup, IsWaitedForNoLongerThanAskedFor) {
  CountingGroup group;
  group.enter();
  const auto before = steady_clock::now();

  const bool left = group.wait(200 * kMillisecond);

  const auto waited = steady_clock::now() - before;
  EXPECT_FALSE(left);
  EXPECT_GE(waited, milliseconds(200));
  EXPECT_LT(waited, milliseconds(2000));
}

TEST(DispatchGroup, IsOnlyLookedAtWhenThereIsNoTime) {
  CountingGroup group;
  group.enter();
  const auto before = steady_clock::now();

  EXPECT_FALSE(group.wait(0));
  EXPECT_FALSE(group.wait(-5 * kMillisecond));
  EXPECT_FALSE(group.wait(std::numeric_limits<std::int64_t>::min()));

  EXPECT_LT(steady_clock::now() - before, milliseconds(500));
}

TEST(DispatchGroup, EndsTheWaitWhenTheLastOneLeaves) {
  CountingGroup group;
  std::atomic<int> inside = 2;
  group.enter();
  group.enter();

  std::jthread worker([&] {
    std::this_thread::sleep_for(milliseconds(50));
    --inside;
    group.leave();
    std::this_thread::sleep_for(milliseconds(50));
    --inside;
    group.leave();
  });
  const bool left = group.wait(kForEver);

  EXPECT_TRUE(left);
  EXPECT_EQ(inside, 0);
}

TEST(DispatchGroup, MayBeLetGoByTheWaiterBeforeItIsLeft) {
  std::jthread worker;
  {
    const std::shared_ptr<DispatchGroup> group = std::make_shared<CountingGroup>();
    group->enter();
    worker = std::jthread([group] {
      std::this_thread::sleep_for(milliseconds(50));
      group->leave();
    });
    EXPECT_FALSE(group->wait(kMillisecond));
  }

  worker.join();
}

}  // namespace
}  // namespace karno::platform
