#include "installer/archive/serial_worker.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <optional>
#include <thread>
#include <vector>

#include "support/no_threads.h"

namespace karno::test {
namespace {

using installer::Failure;
using installer::FailureCode;
using installer::MaybeFailure;
using installer::SerialWorker;

const Failure kDiskFailure{FailureCode::Unpacking, "disk"};

TEST(SerialWorker, DoesAllWorkInItsOrderOnAnotherThread) {
  std::vector<int> done;
  std::thread::id thread;
  SerialWorker worker;
  for (int number = 0; number < 1000; ++number) {
    worker.add([&done, &thread, number]() -> MaybeFailure {
      done.push_back(number);
      thread = std::this_thread::get_id();
      return std::nullopt;
    });
  }

  EXPECT_EQ(worker.finish(), std::nullopt);

  EXPECT_EQ(done.size(), 1000);
  EXPECT_TRUE(std::is_sorted(done.begin(), done.end()));
  EXPECT_NE(thread, std::this_thread::get_id());
}

TEST(SerialWorker, StopsAtTheFirstFailure) {
  std::vector<int> done;
  SerialWorker worker;
  MaybeFailure told;
  for (int number = 0; !told && number < 1000; ++number) {
    told = worker.add([&done, number] {
      done.push_back(number);
      return number < 3 ? std::nullopt : MaybeFailure(kDiskFailure);
    });
  }

  EXPECT_EQ(told, kDiskFailure);
  EXPECT_EQ(worker.finish(), kDiskFailure);
  EXPECT_EQ(done, (std::vector<int>{0, 1, 2, 3}));
}

TEST(SerialWorker, TellsAFailureToTheOneThatWaitsForRoom) {
  constexpr int kMoreThanWaitAtOnce = 18;
  std::atomic<int> added = 0;
  SerialWorker worker;
  MaybeFailure told;
  while (!told) {
    ++added;
    told = worker.add([&added] {
      while (added < kMoreThanWaitAtOnce) std::this_thread::yield();
      return MaybeFailure(kDiskFailure);
    });
  }

  EXPECT_EQ(added, kMoreThanWaitAtOnce);
}

TEST(SerialWorker, TellsAFailureOfItsLastWorkInTheEnd) {
  SerialWorker worker;
  worker.add([] { return MaybeFailure(kDiskFailure); });

  EXPECT_EQ(worker.finish(), kDiskFailure);
}

TEST(SerialWorker, IsNeverFarBehind) {
  std::atomic<int> done = 0;
  int mostBehind = 0;
  SerialWorker worker;
  for (int added = 1; added <= 10'000; ++added) {
    worker.add([&done]() -> MaybeFailure {
      std::this_thread::yield();
      ++done;
      return std::nullopt;
    });
    mostBehind = std::max(mostBehind, added - done);
  }

  worker.finish();

  // One is being done.
  EXPECT_LE(mostBehind, 17);
  EXPECT_EQ(done, 10'000);
}

TEST(SerialWorker, WorksOnTheCallersThreadWhereThereIsNoOther) {
  const NoThreads none;
  std::vector<std::thread::id> threads;
  SerialWorker worker;
  MaybeFailure told = worker.add([&threads]() -> MaybeFailure {
    threads.push_back(std::this_thread::get_id());
    return std::nullopt;
  });
  EXPECT_EQ(told, std::nullopt);
  EXPECT_EQ(worker.add([] { return MaybeFailure(kDiskFailure); }), kDiskFailure);
  EXPECT_EQ(worker.add([&threads]() -> MaybeFailure {
    threads.clear();
    return std::nullopt;
  }),
            kDiskFailure);

  EXPECT_EQ(worker.finish(), kDiskFailure);
  EXPECT_EQ(threads, std::vector{std::this_thread::get_id()});
}

}  // namespace
}  // namespace karno::test
