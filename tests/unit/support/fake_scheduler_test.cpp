#include "fake_scheduler.h"

#include <gmock/gmock.h>
#include <gtest/gtest-spi.h>

#include "elements_are.h"
#include "fake_platform.h"

namespace karno::test {
namespace {

using karno::test::ElementsAre;
using platform::QueuePriority;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

// Letters in the order in which three threads and the main queues were given the baton.
std::string orderWithSeed(std::uint64_t seed) {
  FakePlatform machine(seed);
  std::string order;
  for (const char letter : std::string("abcdef")) {
    machine.onThread([&order, &machine, letter] {
      order += letter;
      machine.dispatch.sleep(1);
      order += letter;
    });
  }
  machine.dispatch.mainQueue().async([&order] { order += 'M'; });
  machine.dispatch.mainOperationQueue().async([&order] { order += 'O'; });
  machine.runFor(1);
  return order;
}

TEST(VirtualTime, StandsStillUntilSomebodySleeps) {
  FakePlatform machine;
  int blocks = 0;
  for (int i = 0; i < 100; ++i) machine.dispatch.globalQueue(QueuePriority::Default).async([&] { ++blocks; });

  machine.runUntilIdle();

  EXPECT_EQ(blocks, 100);
  EXPECT_EQ(machine.seconds(), 0);
}

TEST(VirtualTime, JumpsToTheNextSleeper) {
  FakePlatform machine;
  std::vector<double> wakeUps;
  machine.onThread([&] {
    machine.dispatch.sleep(3600);
    wakeUps.push_back(machine.seconds());
  });
  machine.onThread([&] {
    machine.dispatch.sleep(0.25);
    wakeUps.push_back(machine.seconds());
  });

  machine.runFor(7200);

  EXPECT_THAT(wakeUps, ElementsAre(0.25, 3600));
  EXPECT_EQ(machine.seconds(), 7200);
}

TEST(VirtualTime, EndsARunAfterTheWorkThatIsDueAtItsEnd) {
  FakePlatform machine;
  std::vector<int> done;
  machine.onThread([&] {
    machine.dispatch.sleep(2);
    done.push_back(2);
  });
  machine.onThread([&] {
    machine.dispatch.sleep(2.001);
    done.push_back(3);
  });

  machine.runFor(2);

  EXPECT_THAT(done, ElementsAre(2));
}

TEST(VirtualTime, DoesNotPassWhenRunningUntilIdle) {
  FakePlatform machine;
  bool woke = false;
  machine.onThread([&] {
    machine.dispatch.sleep(0.1);
    woke = true;
  });

  machine.runUntilIdle();

  EXPECT_FALSE(woke);
  EXPECT_EQ(machine.seconds(), 0);
}

TEST(VirtualTime, StopsAsSoonAsThePredicateHolds) {
  FakePlatform machine;
  int ticks = 0;
  machine.onThread([&] {
    for (;;) {
      machine.dispatch.sleep(1);
      ++ticks;
    }
  });

  const bool held = machine.runUntil([&] { return ticks == 3; }, 10);

  EXPECT_TRUE(held);
  EXPECT_EQ(machine.seconds(), 3);
}

TEST(VirtualTime, PassesTheWholeLimitWhenThePredicateNeverHolds) {
  FakePlatform machine;

  const bool held = machine.runUntil([] { return false; }, 10);

  EXPECT_FALSE(held);
  EXPECT_EQ(machine.seconds(), 10);
}

TEST(VirtualTime, PassesForOthersWhileTheMainThreadSleeps) {
  FakePlatform machine;
  std::string order;
  machine.onThread([&] {
    machine.dispatch.sleep(1);
    order += "other ";
  });
  machine.dispatch.mainQueue().async([&] { order += "queue "; });

  machine.dispatch.sleep(2);
  order += "main ";
  machine.runUntilIdle();

  EXPECT_EQ(order, "other main queue ");
}

TEST(VirtualTime, IsToldByTheWallClock) {
  FakePlatform machine;

  machine.runFor(1.5);

  EXPECT_EQ(machine.clock.now(), kStartOfTest + std::chrono::milliseconds(1500));
}

TEST(VirtualTime, IsNotChangedBySettingTheWallClock) {
  FakePlatform machine;
  machine.runFor(1);

  machine.clock.setNow(kStartOfTest + std::chrono::hours(24));
  machine.runFor(1);

  EXPECT_EQ(machine.clock.now(), kStartOfTest + std::chrono::hours(24) + std::chrono::seconds(1));
  EXPECT_EQ(machine.seconds(), 2);
}

TEST(Order, IsTheSameForTheSameSeed) { EXPECT_EQ(orderWithSeed(7), orderWithSeed(7)); }

TEST(Order, DiffersBetweenSeeds) { EXPECT_NE(orderWithSeed(7), orderWithSeed(8)); }

TEST(Order, IsFirstInFirstOutOnTheMainQueue) {
  FakePlatform machine;
  std::vector<int> order;
  for (int i = 0; i < 5; ++i) machine.dispatch.mainQueue().async([&order, i] { order.push_back(i); });

  machine.runUntilIdle();

  EXPECT_THAT(order, ElementsAre(0, 1, 2, 3, 4));
}

TEST(Order, IsFirstInFirstOutOnASerialQueueThatSleeps) {
  FakePlatform machine;
  std::vector<int> order;
  const auto queue = machine.dispatch.makeSerialQueue("label");
  for (int i = 0; i < 5; ++i) {
    queue->async([&machine, &order, i] {
      machine.dispatch.sleep(1.0 / (i + 1));
      order.push_back(i);
    });
  }

  machine.runFor(10);

  EXPECT_THAT(order, ElementsAre(0, 1, 2, 3, 4));
}

TEST(SerialQueue, RunsItsBlocksThoughItsMakerHasLetGoOfIt) {
  FakePlatform machine;
  int ran = 0;
  auto queue = machine.dispatch.makeSerialQueue("label");
  queue->async([&] { machine.dispatch.sleep(1); });
  queue->async([&] { ++ran; });

  queue.reset();
  machine.runFor(2);

  EXPECT_EQ(ran, 1);
}

TEST(GlobalQueue, GivesEachBlockAThreadOfItsOwn) {
  FakePlatform machine;
  int ended = 0;
  for (int i = 0; i < 8; ++i) {
    machine.dispatch.globalQueue(QueuePriority::Default).async([&] {
      machine.dispatch.sleep(1);
      ++ended;
    });
  }

  machine.runFor(1);

  EXPECT_EQ(ended, 8);
}

TEST(Threads, AreNamedAfterTheirQueues) {
  FakePlatform machine;
  std::vector<std::string> names;
  const auto note = [&] { names.push_back(machine.scheduler.currentThreadName()); };

  note();
  machine.dispatch.mainQueue().async(note);
  machine.runUntilIdle();
  machine.dispatch.globalQueue(QueuePriority::Background).async(note);
  machine.runUntilIdle();
  machine.dispatch.makeSerialQueue("it.label")->async(note);
  machine.runUntilIdle();
  machine.onThread(note, "stranger");
  machine.runUntilIdle();

  EXPECT_THAT(names, ElementsAre("main", "main", "global(-32768)", "it.label", "stranger"));
}

TEST(Threads, AreTheMainThreadOnlyOnTheMainQueues) {
  FakePlatform machine;
  std::vector<bool> answers;
  const auto note = [&] { answers.push_back(machine.dispatch.isMainThread()); };

  machine.dispatch.mainQueue().async(note);
  machine.runUntilIdle();
  machine.dispatch.mainOperationQueue().async(note);
  machine.runUntilIdle();
  machine.dispatch.globalQueue(QueuePriority::Default).async(note);
  machine.runUntilIdle();

  EXPECT_THAT(answers, ElementsAre(true, true, false));
}

TEST(ModalLoop, RunsEventsButNoBlockOfTheTwoMainQueues) {
  FakePlatform machine;
  std::string order;
  machine.dispatch.mainQueue().async([&] {
    machine.dispatch.mainQueue().async([&] { order += "block "; });
    machine.dispatch.mainOperationQueue().async([&] { order += "block "; });
    machine.dispatch.mainEvents().async([&] { order += "event "; });
    machine.runFor(5);
    order += "end ";
  });

  machine.runUntilIdle();

  EXPECT_EQ(order, "event end block block ");
  EXPECT_EQ(machine.seconds(), 5);
}

TEST(EndlessWork, WithSleepIsEndedWithTheMachine) {
  bool unwound = false;
  struct Guard {
    bool& flag;
    ~Guard() { flag = true; }
  };
  {
    FakePlatform machine;
    machine.onThread([&] {
      const Guard guard{unwound};
      for (;;) machine.dispatch.sleep(0.1);
    });
    machine.runFor(1);
  }

  EXPECT_TRUE(unwound);
}

TEST(EndlessWork, PastAHandlerOfErrorsIsEndedWithTheMachine) {
  int caught = 0;
  {
    FakePlatform machine;
    machine.onThread([&] {
      try {
        machine.dispatch.sleep(1000);
      } catch (const std::exception&) {
        ++caught;
      }
    });
    machine.runFor(1);
  }

  EXPECT_EQ(caught, 0);
}

TEST(EndlessWork, ThatNeverBeganIsDroppedWithTheMachine) {
  int ran = 0;
  {
    FakePlatform machine;
    machine.onThread([&] { ++ran; });
    machine.dispatch.mainQueue().async([&] { ++ran; });
  }

  EXPECT_EQ(ran, 0);
}

TEST(EndlessWork, OfBlocksThatMakeBlocksMeetsTheLimit) {
  FakePlatform machine;
  std::function<void()> again = [&] { machine.dispatch.mainQueue().async(again); };
  machine.dispatch.mainQueue().async(again);

  EXPECT_THROW(machine.runUntilIdle(), StepLimitReached);
}

TEST(EndlessWork, InOneBlockMeetsTheLimitAndNamesTheThread) {
  FakePlatform machine;
  machine.onThread(
      [&] {
        for (;;) static_cast<void>(machine.clock.now());
      },
      "spinner");
  std::string failure;

  try {
    machine.runUntilIdle();
  } catch (const StepLimitReached& limit) {
    failure = limit.what();
  }

  EXPECT_EQ(failure,
            "work without end and without sleep at 0.000000 s of virtual time on the thread spinner");
}

TEST(Blocks, ThatThrowAreWrittenToTheConsoleAndFailTheTest) {
  static std::vector<std::string> console;
  const auto throwInABlock = [] {
    FakePlatform machine;
    machine.dispatch.globalQueue(QueuePriority::Default).async([] { throw std::runtime_error("broken"); });
    machine.runUntilIdle();
    console = machine.console();
  };

  EXPECT_NONFATAL_FAILURE_ON_ALL_THREADS(throwInABlock(), "a block on the thread global(0) threw: broken");

  EXPECT_THAT(console, ElementsAre("A block threw: broken"));
}

TEST(Services, ForTheMainThreadFailTheTestElsewhere) {
  const auto activateOnAThread = [] {
    FakePlatform machine;
    machine.onThread([&] { machine.application.activateIgnoringOtherApps(); });
    machine.runUntilIdle();
  };

  EXPECT_NONFATAL_FAILURE_ON_ALL_THREADS(
      activateOnAThread(), "Application::activateIgnoringOtherApps called on the thread foreign");
}

}  // namespace
}  // namespace karno::test
