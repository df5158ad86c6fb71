#pragma once
#include <semaphore.h>

#include <chrono>
#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <set>
#include <stdexcept>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

namespace karno::test {

// Thrown when work goes on and on without any virtual time passing.
class StepLimitReached : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// What the main thread can find to do. Each lane is first in, first out; between lanes the seed decides.
// While a block of one of the two queues runs a modal loop, nothing of either runs; events go on.
enum class MainLane { DispatchQueue, OperationQueue, Events };

// How far a machine is from the best one there can be. Nothing of it unless somebody asks for it.
struct Unruliness {
  unsigned yieldPercent = 0;                 // of the places where another thread may go on
  unsigned latePercent = 0;                  // of the threads that start and of the sleepers that wake
  double lateSecondsMax = 0;                 // how late they are
  std::size_t threadsMax = ~std::size_t{0};  // of queues, that run at once
};

// One thread waits for another. Not the standard library's semaphore, which yields the processor before it
// waits: beside programs that are always busy each hand-over would then take as long as they may stay.
class HandOver {
 public:
  HandOver();
  ~HandOver();
  HandOver(const HandOver&) = delete;
  HandOver& operator=(const HandOver&) = delete;

  void release();
  void acquire();
  bool tryAcquireFor(std::chrono::seconds limit);  // of real time; false when nobody released it

 private:
  sem_t semaphore_;
};

// Runs virtual threads one at a time in virtual time. Every virtual thread is a real one, but only the holder
// of the baton runs, so nothing in the fakes needs a lock and a seed fixes the whole order. The baton changes
// hands only when a thread sleeps, waits, yields or ends. The thread that makes the scheduler is the main
// thread.
class FakeScheduler {
 public:
  using Block = std::function<void()>;

  explicit FakeScheduler(std::uint64_t seed);
  ~FakeScheduler();
  FakeScheduler(const FakeScheduler&) = delete;
  FakeScheduler& operator=(const FakeScheduler&) = delete;

  // Hears what a block threw, on the thread of the block.
  void setExceptionHandler(std::function<void(std::string_view what)> handler);

  void addThread(std::string name, Block block);
  void addToMain(MainLane lane, Block block);

  // Suspends the caller in virtual time. On the main thread everything goes on except its own lanes.
  void sleep(double seconds);

  // Suspends the caller in virtual time until the predicate holds; false when the time passes first. The
  // predicate is asked on any thread.
  bool waitUntil(const std::function<bool()>& predicate, double seconds);

  // Now and then, as the unruliness has it, lets another thread go on first.
  void yield();

  void setUnruliness(const Unruliness& unruliness) { unruliness_ = unruliness; }

  // Numbers the blocks in the order in which they were given to threads and lanes; 0 is what the test itself
  // does on the main thread.
  std::uint64_t currentBlock() const;

  // Whether that block has ended, also by an exception.
  bool hasEnded(std::uint64_t block) const { return ended_.contains(block); }

  // The same numbers from the same seed.
  std::uint64_t random();

  bool isMainThread() const;
  std::string currentThreadName() const;  // "main" or the name given to addThread()

  // Fails the test when the caller is not the main thread.
  void requireMainThread(std::string_view operation) const;

  // Services call this, so that a loop that never sleeps is found.
  void countAction();

  double secondsSinceStart() const;
  std::int64_t nanosecondsSinceStart() const { return now_; }

  // The next three are for the main thread only; they may be nested. All work that is due is done; no time
  // passes.
  void runUntilIdle();
  // As much virtual time passes, work due at the very end included.
  void runFor(double seconds);
  // Runs until the predicate holds; false when the limit passes or nothing is left to do first.
  bool runUntil(const std::function<bool()>& predicate, double limitSeconds);

  // Ends all threads: sleepers are unwound out of sleep(), what has not begun never does.
  void shutDown();

 private:
  struct VirtualThread;
  struct NumberedBlock {
    std::uint64_t number = 0;
    Block block;
  };

  bool run(std::int64_t deadline, bool mainLanes, const std::function<bool()>& predicate);
  bool step(bool mainLanes);
  void runMainBlock(MainLane which);
  void giveBatonTo(VirtualThread& thread);
  bool suspend(std::int64_t until, const std::function<bool()>& predicate);
  std::int64_t lateness();
  bool hasRoomFor(const VirtualThread& thread) const;
  void takeBatonBack(VirtualThread& thread);
  void threadBody(VirtualThread& thread);
  void guarded(const Block& block);
  void reap(VirtualThread& thread);
  bool isDue(const VirtualThread& thread) const;
  std::int64_t nextWakeUp() const;
  void advanceTo(std::int64_t time);
  std::deque<NumberedBlock>& lane(MainLane which) { return lanes_[static_cast<std::size_t>(which)]; }

  const std::thread::id mainThread_;
  std::uint64_t randomState_;
  std::function<void(std::string_view)> exceptionHandler_;
  std::int64_t now_ = 0;
  std::int64_t actionsAtThisMoment_ = 0;
  bool stopping_ = false;
  std::string limitFailure_;  // of a virtual thread, to be thrown on the main one
  std::deque<NumberedBlock> lanes_[3];
  bool areQueuesBusy_ = false;
  Unruliness unruliness_;
  std::uint64_t blocks_ = 0;
  std::uint64_t mainBlock_ = 0;
  std::set<std::uint64_t> ended_;
  std::vector<std::unique_ptr<VirtualThread>> threads_;

  HandOver mainWake_;  // the baton comes back to the main thread
};

}  // namespace karno::test
