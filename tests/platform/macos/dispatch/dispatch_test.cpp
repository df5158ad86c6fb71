#include "platform/macos/dispatch/dispatch.h"

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <cmath>
#include <limits>
#include <stdexcept>
#include <thread>

#include "../../support/standard_error_capture.h"
#include "../grand_central.h"
#include "../stand_in.h"
#include "elements_are.h"
#include "platform/cocoa/runtime/strings.h"
#include "platform/macos/dispatch/gcd_group.h"

namespace karno::platform::trial {
namespace {

using karno::test::ElementsAre;
using karno::test::StandardErrorCapture;

Class workClass() {
  static const Class made = StandInClass("StandInWork").registerClass();
  return made;
}

class MacQueues : public testing::Test {
 protected:
  GrandCentral central_;
  StandIns standIns_;
  MacDispatch dispatch_;
};

TEST_F(MacQueues, AreThoseOfGrandCentralDispatch) {
  dispatch_.mainQueue().async([] {});
  dispatch_.globalQueue(QueuePriority::Default).async([] {});
  dispatch_.globalQueue(QueuePriority::Background).async([] {});

  EXPECT_THAT(central_.lines, ElementsAre("async main", "async global 0 0", "async global -32768 0"));
  for (int each = 0; each < 3; ++each) central_.runNextOnAnotherThread();
}

TEST_F(MacQueues, RunABlockOnceAndLetItGo) {
  const auto count = std::make_shared<int>(0);
  dispatch_.globalQueue(QueuePriority::Default).async([count] { ++*count; });
  EXPECT_EQ(*count, 0);

  central_.runNextOnAnotherThread();

  EXPECT_EQ(*count, 1);
  EXPECT_EQ(count.use_count(), 1);
}

TEST_F(MacQueues, CollectWhatABlockAutoreleases) {
  int countInside = 0;
  dispatch_.globalQueue(QueuePriority::Default).async([&] {
    objc::send(objc::send(objc::send(workClass(), "alloc"), "init"), "autorelease");
    countInside = standIns_.liveCount();
  });

  central_.runNextOnAnotherThread();

  EXPECT_EQ(countInside, 1);
  EXPECT_EQ(standIns_.liveCount(), 0);
}

objc::Id processInfo(objc::Id, objc::Sel selector) { return answer(selector); }

objc::Id beginActivity(objc::Id, objc::Sel selector, unsigned long options, objc::Id reason) {
  return recordAndAnswer(selector, fmt::format("{:#x} {}", options, shown(reason)));
}

void endActivity(objc::Id, objc::Sel selector, objc::Id token) { recordAndAnswer(selector, shown(token)); }

Class processInfoClass() {
  static const Class made = StandInClass("StandInProcessInfo")
                                .classMethod("processInfo", "@@:", processInfo)
                                .method("beginActivityWithOptions:reason:", "@@:Q@", beginActivity)
                                .method("endActivity:", "v@:@", endActivity)
                                .registerClass();
  return made;
}

class MacActivities : public MacQueues {
 protected:
  MacActivities() {
    standIns_.answer("processInfo", instanceOf(processInfoClass()));
    standIns_.answer("beginActivityWithOptions:reason:", objc::string("token"));
  }

  const objc::AutoreleasePool pool_;
  const objc::ClassOverride override_{"NSProcessInfo", processInfoClass()};
};

TEST_F(MacActivities, KeepTheProcessAwakeAsLongAsSomebodyWaits) {
  std::shared_ptr<void> activity = dispatch_.beginActivity("Waiting for macFUSE");
  EXPECT_THAT(standIns_.messages(),
              ElementsAre("beginActivityWithOptions:reason: 0xefffff Waiting for macFUSE"));

  std::thread([&activity] { activity.reset(); }).join();

  EXPECT_EQ(standIns_.messages().back(), "endActivity: token");
}

TEST_F(MacActivities, AreDoneWithoutWhereTheSystemRefuses) {
  const StandardErrorCapture console;
  standIns_.raise();

  dispatch_.beginActivity("Waiting for macFUSE").reset();

  EXPECT_EQ(console.text(), "begin an activity: raised by a stand-in\n");
}

TEST_F(MacQueues, TellTheConsoleWhatABlockThrows) {
  const StandardErrorCapture console;
  dispatch_.globalQueue(QueuePriority::Default).async([] { throw std::runtime_error("out of order"); });
  dispatch_.mainQueue().async([] { throw 1; });

  central_.runNextOnAnotherThread();
  central_.runNextOnAnotherThread();

  EXPECT_EQ(console.text(),
            "default global queue: a block threw an exception: out of order\n"
            "main queue: a block threw an exception\n");
}

TEST_F(MacQueues, OfALabelAreMadeSerialAndReleasedOnce) {
  auto queue = dispatch_.makeSerialQueue("it.vantul.log");
  queue->async([] {});
  queue.reset();

  EXPECT_THAT(central_.lines,
              ElementsAre("create it.vantul.log serial", "async it.vantul.log", "release, 0 left"));
  central_.runNextOnAnotherThread();
}

TEST_F(MacQueues, RunTheirLastBlockAfterTheyAreLetGo) {
  const StandardErrorCapture console;
  bool hasRun = false;
  auto queue = dispatch_.makeSerialQueue("it.vantul.log");
  queue->async([&hasRun] {
    hasRun = true;
    throw std::runtime_error("out of order");
  });
  queue.reset();

  central_.runNextOnAnotherThread();

  EXPECT_TRUE(hasRun);
  EXPECT_EQ(console.text(), "it.vantul.log: a block threw an exception: out of order\n");
}

TEST_F(MacQueues, KnowTheMainThread) {
  bool isElsewhere = true;
  dispatch_.globalQueue(QueuePriority::Default).async([&] { isElsewhere = !dispatch_.isMainThread(); });
  central_.runNextOnAnotherThread();

  EXPECT_TRUE(dispatch_.isMainThread());
  EXPECT_TRUE(isElsewhere);
}

TEST_F(MacQueues, SleepAtLeastAsLongAsAsked) {
  const auto before = std::chrono::steady_clock::now();

  dispatch_.sleep(0.02);

  EXPECT_GE(std::chrono::steady_clock::now() - before, std::chrono::milliseconds(20));
}

TEST_F(MacQueues, DoNotSleepWhereThereIsNoTime) {
  dispatch_.sleep(0);
  dispatch_.sleep(-std::numeric_limits<double>::infinity());
  dispatch_.sleep(std::nan(""));
}

TEST(MacGroups, CountAndWaitByGrandCentralDispatch) {
  GrandCentral central;
  auto group = std::make_unique<GCDGroup>();

  group->enter();
  group->leave();
  const bool isDone = group->wait(1'500'000'000);
  group.reset();

  EXPECT_TRUE(isDone);
  EXPECT_THAT(central.lines, ElementsAre("create a group", "enter", "leave", "1500000000 ns from 0",
                                         "wait until 4711", "release, 0 left"));
}

TEST(MacGroups, TellThatTheTimeRanOut) {
  GrandCentral central;
  central.waitAnswer = 49;  // of macOS

  EXPECT_FALSE(GCDGroup().wait(1));
}

// A negative time would mean a moment of another clock.
TEST(MacGroups, OnlyLookWhenThereIsNoTime) {
  GrandCentral central;

  GCDGroup().wait(-1);
  GCDGroup().wait(0);

  EXPECT_THAT(central.lines,
              ElementsAre("create a group", "0 ns from 0", "wait until 4711", "release, 0 left",
                          "create a group", "0 ns from 0", "wait until 4711", "release, 0 left"));
}

TEST(MacGroups, AreMadeByTheDispatch) {
  GrandCentral central;
  MacDispatch dispatch;

  const auto group = dispatch.makeGroup();

  EXPECT_TRUE(group->wait(0));
  EXPECT_EQ(central.lines.front(), "create a group");
}

}  // namespace
}  // namespace karno::platform::trial
