#include "platform/linux/dispatch/dispatch.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <pthread.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <future>
#include <latch>
#include <set>
#include <stdexcept>
#include <thread>
#include <vector>

#include "../../support/forked_process.h"
#include "../../support/standard_error_capture.h"
#include "../../support/started_task.h"
#include "../../support/temporary_folder.h"
#include "platform/never_destroyed.h"
#include "platform/posix/processes/tasks.h"

namespace karno::platform {
namespace {

using test::StandardErrorCapture;
using test::TemporaryFolder;

LinuxDispatch& dispatch() {
  static NeverDestroyed<LinuxDispatch> made;
  return made.get();
}

int niceValueOfThisThread() { return ::getpriority(PRIO_PROCESS, static_cast<id_t>(::syscall(SYS_gettid))); }

std::string nameOfThisThread() {
  char name[16] = {};
  ::pthread_getname_np(::pthread_self(), name, sizeof name);
  return name;
}

// Runs the function on that queue and answers what it returned.
template <class Function>
auto resultOn(Queue& queue, Function function) {
  std::promise<decltype(function())> promise;
  queue.async([&] { promise.set_value(function()); });
  return promise.get_future().get();
}

TEST(LinuxDispatch, RunsBlocksOfEveryPriorityOffTheCallingThread) {
  for (const auto priority : {QueuePriority::Default, QueuePriority::Background}) {
    EXPECT_NE(resultOn(dispatch().globalQueue(priority), [] { return std::this_thread::get_id(); }),
              std::this_thread::get_id());
  }
}

TEST(LinuxDispatch, GivesBackgroundBlocksALowerPriority) {
  const int normal = resultOn(dispatch().globalQueue(QueuePriority::Default), niceValueOfThisThread);
  const int background = resultOn(dispatch().globalQueue(QueuePriority::Background), niceValueOfThisThread);

  EXPECT_EQ(normal, niceValueOfThisThread());
  EXPECT_GT(background, normal);
}

TEST(LinuxDispatch, PassesTheLowerPriorityNeitherToOtherQueuesNorToChildren) {
  const TemporaryFolder folder;
  PosixTasks tasks;

  const auto seen = resultOn(dispatch().globalQueue(QueuePriority::Background), [&] {
    std::vector<int> values;
    std::latch allRun(40);
    std::mutex mutex;
    // More blocks at a time than there are idle threads, so that new ones are started from here.
    for (int count = 0; count < 40; ++count) {
      dispatch().globalQueue(QueuePriority::Default).async([&] {
        {
          const std::scoped_lock lock(mutex);
          values.push_back(niceValueOfThisThread());
        }
        allRun.arrive_and_wait();
      });
    }
    allRun.wait();
    test::StartedTask task(tasks, "/bin/sh", {"-c", "nice > \"$0\"", folder / "nice"});
    task.waitForEnd();
    const std::scoped_lock lock(mutex);
    return values;
  });

  EXPECT_THAT(seen, testing::Each(niceValueOfThisThread()));
  EXPECT_EQ(test::contentOf(folder / "nice"), std::to_string(niceValueOfThisThread()) + "\n");
}

TEST(LinuxDispatch, RunsABlockWhileManyOthersOccupyTheirThreads) {
  std::promise<void> release;
  const std::shared_future<void> released = release.get_future().share();
  std::latch ended(200);
  for (int count = 0; count < 200; ++count) {
    dispatch().globalQueue(QueuePriority::Default).async([&ended, released] {
      released.wait();
      ended.count_down();
    });
  }

  const bool ran = resultOn(dispatch().globalQueue(QueuePriority::Default), [] { return true; });
  release.set_value();
  ended.wait();

  EXPECT_TRUE(ran);
}

TEST(LinuxDispatch, RunsEachOfManyBlocksOnce) {
  constexpr int kBlocks = 20'000;
  std::vector<std::atomic<int>> runs(kBlocks);
  std::latch ended(kBlocks);

  for (auto& run : runs) {
    dispatch().globalQueue(QueuePriority::Default).async([&] {
      ++run;
      ended.count_down();
    });
  }
  ended.wait();

  EXPECT_THAT(runs, testing::Each(testing::ResultOf([](const auto& run) { return run.load(); }, 1)));
}

TEST(LinuxDispatch, RunsTheBlocksOfASerialQueueInOrderAndOneAtATime) {
  const auto queue = dispatch().makeSerialQueue("it.vantul.test.Serial");
  std::vector<int> order;
  std::atomic<int> running = 0;
  std::atomic<int> runningMax = 0;
  std::promise<void> ended;
  std::vector<int> expected;

  for (int number = 0; number < 1000; ++number) {
    expected.push_back(number);
    queue->async([&, number] {
      runningMax = std::max(runningMax.load(), ++running);
      order.push_back(number);
      --running;
    });
  }
  queue->async([&] { ended.set_value(); });
  ended.get_future().wait();

  EXPECT_EQ(order, expected);
  EXPECT_EQ(runningMax, 1);
}

TEST(LinuxDispatch, NamesTheThreadAfterTheLastPartOfTheLabel) {
  const auto logger = dispatch().makeSerialQueue("it.vantul.KarnoWrapper.Logger");
  const auto longName = dispatch().makeSerialQueue("it.vantul.AVeryLongQueueNameIndeed");
  const auto bare = dispatch().makeSerialQueue("Bare");

  EXPECT_EQ(resultOn(*logger, nameOfThisThread), "Logger");
  EXPECT_EQ(resultOn(*longName, nameOfThisThread), "AVeryLongQueueN");
  EXPECT_EQ(resultOn(*bare, nameOfThisThread), "Bare");
}

TEST(LinuxDispatch, ReportsWhatABlockThrowsAndGoesOn) {
  const StandardErrorCapture console;
  const auto queue = dispatch().makeSerialQueue("it.vantul.test.Throwing");

  queue->async([] { throw std::runtime_error("no luck"); });
  queue->async([] { throw 5; });
  const bool wentOn = resultOn(*queue, [] { return true; });

  EXPECT_TRUE(wentOn);
  EXPECT_EQ(console.text(),
            "Dispatch: a block threw an exception: no luck\nDispatch: a block threw an exception\n");
}

TEST(LinuxDispatch, SleepsNoShorterThanAskedFor) {
  const auto before = std::chrono::steady_clock::now();

  dispatch().sleep(0.2);

  const auto slept = std::chrono::steady_clock::now() - before;
  EXPECT_GE(slept, std::chrono::milliseconds(200));
  EXPECT_LT(slept, std::chrono::milliseconds(2000));
}

TEST(LinuxDispatch, SleepsOnThroughASignal) {
  struct sigaction action = {};
  struct sigaction previous = {};
  action.sa_handler = [](int) {};
  ::sigaction(SIGUSR2, &action, &previous);
  const pthread_t sleeper = ::pthread_self();
  const auto before = std::chrono::steady_clock::now();

  std::jthread disturber([sleeper] {
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
    ::pthread_kill(sleeper, SIGUSR2);
  });
  dispatch().sleep(0.3);
  const auto slept = std::chrono::steady_clock::now() - before;
  ::sigaction(SIGUSR2, &previous, nullptr);

  EXPECT_GE(slept, std::chrono::milliseconds(300));
}

TEST(LinuxDispatch, DoesNotSleepForNoTime) {
  const auto before = std::chrono::steady_clock::now();

  dispatch().sleep(0);
  dispatch().sleep(-5);

  EXPECT_LT(std::chrono::steady_clock::now() - before, std::chrono::milliseconds(500));
}

TEST(LinuxDispatch, SurvivesTheEndOfTheProcessWithThreadsThatStillRun) {
  GTEST_FLAG_SET(death_test_style,
                 "threadsafe");  // in a process of its own, since threads do not survive a fork
  static std::atomic<int> running = 0;
  const auto endlessWork = [] {
    ++running;
    while (true) {
      dispatch().sleep(0.0001);
      dispatch().globalQueue(QueuePriority::Default).async([] {});
    }
  };

  EXPECT_EXIT(
      {
        const auto queue = dispatch().makeSerialQueue("it.vantul.test.Endless");
        queue->async(endlessWork);
        dispatch().globalQueue(QueuePriority::Default).async(endlessWork);
        dispatch().globalQueue(QueuePriority::Background).async(endlessWork);
        dispatch().sleep(0.2);
        std::exit(running == 3 ? 42 : 1);
      },
      testing::ExitedWithCode(42), "^$");
}

}  // namespace
}  // namespace karno::platform
