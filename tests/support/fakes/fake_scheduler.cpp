#include "fake_scheduler.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <limits>
#include <utility>

namespace karno::test {
namespace {

constexpr std::int64_t kActionsAtOneMomentMax = 2'000'000;
constexpr std::int64_t kNever = std::numeric_limits<std::int64_t>::max();
constexpr auto kStuckAfter = std::chrono::seconds(120);  // of real time

// Unwinds a sleeping thread at the end of a test. Not a std::exception, so that handlers of errors let it
// pass.
struct Unwind {};

thread_local void* currentThread = nullptr;  // a FakeScheduler::VirtualThread

// A wait without end is one of a hundred years.
std::int64_t toNanoseconds(double seconds) { return std::llround(std::clamp(seconds, 0.0, 3e9) * 1e9); }

}  // namespace

HandOver::HandOver() { ::sem_init(&semaphore_, 0, 0); }

HandOver::~HandOver() { ::sem_destroy(&semaphore_); }

void HandOver::release() { ::sem_post(&semaphore_); }

void HandOver::acquire() {
  while (::sem_wait(&semaphore_) != 0 && errno == EINTR) {
  }
}

bool HandOver::tryAcquireFor(std::chrono::seconds limit) {
  timespec until{};
  ::clock_gettime(CLOCK_REALTIME, &until);
  until.tv_sec += limit.count();
  int result = 0;
  do result = ::sem_timedwait(&semaphore_, &until);
  while (result != 0 && errno == EINTR);
  return result == 0;
}

struct FakeScheduler::VirtualThread {
  enum class State { Ready, Running, Sleeping, Finished };

  std::string name;
  Block block;
  std::uint64_t number = 0;
  State state = State::Ready;
  std::int64_t wakeAt = 0;             // also of one that is ready
  std::function<bool()> awaited = {};  // what wakes a sleeper earlier
  HandOver wake;                       // the baton comes to it
  std::thread thread;
};

FakeScheduler::FakeScheduler(std::uint64_t seed)
    : mainThread_(std::this_thread::get_id()),
      randomState_(seed),
      exceptionHandler_([](std::string_view) {}) {}

FakeScheduler::~FakeScheduler() { shutDown(); }

void FakeScheduler::setExceptionHandler(std::function<void(std::string_view)> handler) {
  exceptionHandler_ = std::move(handler);
}

void FakeScheduler::addThread(std::string name, Block block) {
  countAction();
  if (stopping_) return;

  threads_.push_back(std::make_unique<VirtualThread>());
  threads_.back()->name = std::move(name);
  threads_.back()->block = std::move(block);
  threads_.back()->number = ++blocks_;
  threads_.back()->wakeAt = now_ + lateness();
}

void FakeScheduler::addToMain(MainLane which, Block block) {
  countAction();
  if (!stopping_) lane(which).push_back({++blocks_, std::move(block)});
}

void FakeScheduler::sleep(double seconds) {
  suspend(now_ + toNanoseconds(seconds) + (isMainThread() ? 0 : lateness()), nullptr);
}

bool FakeScheduler::waitUntil(const std::function<bool()>& predicate, double seconds) {
  return predicate() || suspend(now_ + toNanoseconds(seconds), predicate);
}

// Answers whether the predicate ended it.
bool FakeScheduler::suspend(std::int64_t until, const std::function<bool()>& predicate) {
  if (isMainThread()) return run(until, false, predicate);

  auto* self = static_cast<VirtualThread*>(currentThread);
  if (self == nullptr) {
    ADD_FAILURE() << "sleep() called on a thread that the machine does not know";
    return false;
  }
  if (stopping_) throw Unwind{};
  self->state = VirtualThread::State::Sleeping;
  self->wakeAt = until;
  self->awaited = predicate;
  takeBatonBack(*self);
  if (stopping_) throw Unwind{};
  return predicate && predicate();
}

void FakeScheduler::yield() {
  if (unruliness_.yieldPercent == 0 || stopping_ || random() % 100 >= unruliness_.yieldPercent) return;
  if (isMainThread()) {
    step(false);
  } else if (currentThread != nullptr) {
    suspend(now_, nullptr);
  }
}

std::int64_t FakeScheduler::lateness() {
  if (unruliness_.latePercent == 0 || random() % 100 >= unruliness_.latePercent) return 0;
  const auto most = static_cast<std::uint64_t>(toNanoseconds(unruliness_.lateSecondsMax));
  return static_cast<std::int64_t>(random() % (most + 1));
}

std::uint64_t FakeScheduler::currentBlock() const {
  if (isMainThread()) return mainBlock_;
  return currentThread != nullptr ? static_cast<VirtualThread*>(currentThread)->number : 0;
}

// Called on the virtual thread: gives the baton to the main thread and waits for its return.
void FakeScheduler::takeBatonBack(VirtualThread& thread) {
  mainWake_.release();
  thread.wake.acquire();
}

bool FakeScheduler::isMainThread() const { return std::this_thread::get_id() == mainThread_; }

std::string FakeScheduler::currentThreadName() const {
  if (isMainThread()) return "main";
  return currentThread != nullptr ? static_cast<VirtualThread*>(currentThread)->name : "unknown";
}

void FakeScheduler::requireMainThread(std::string_view operation) const {
  if (!isMainThread()) ADD_FAILURE() << operation << " called on the thread " << currentThreadName();
}

void FakeScheduler::countAction() {
  if (++actionsAtThisMoment_ <= kActionsAtOneMomentMax || stopping_) return;
  throw StepLimitReached("work without end and without sleep at " + std::to_string(secondsSinceStart()) +
                         " s of virtual time on the thread " + currentThreadName());
}

double FakeScheduler::secondsSinceStart() const { return static_cast<double>(now_) / 1e9; }

void FakeScheduler::runUntilIdle() { run(now_, true, nullptr); }

void FakeScheduler::runFor(double seconds) { run(now_ + toNanoseconds(seconds), true, nullptr); }

bool FakeScheduler::runUntil(const std::function<bool()>& predicate, double limitSeconds) {
  return run(now_ + toNanoseconds(limitSeconds), true, predicate);
}

bool FakeScheduler::run(std::int64_t deadline, bool mainLanes, const std::function<bool()>& predicate) {
  if (!isMainThread()) throw std::logic_error("only the test's own thread can run the machine");

  for (;;) {
    if (predicate && predicate()) return true;
    if (step(mainLanes)) continue;
    const std::int64_t next = nextWakeUp();
    if (next > deadline) break;
    advanceTo(next);
  }
  advanceTo(std::max(now_, deadline));
  return predicate && predicate();
}

// One thing that is due, chosen by the seed; false when nothing is.
bool FakeScheduler::step(bool mainLanes) {
  struct Choice {
    VirtualThread* thread;  // null: the lane of the main thread
    MainLane lane;
  };
  countAction();
  std::vector<Choice> choices;
  for (const auto& thread : threads_) {
    if (isDue(*thread)) choices.push_back({thread.get(), {}});
  }
  for (const MainLane which : {MainLane::DispatchQueue, MainLane::OperationQueue, MainLane::Events}) {
    const bool isHeldUp = areQueuesBusy_ && which != MainLane::Events;
    if (mainLanes && !isHeldUp && !lane(which).empty()) choices.push_back({nullptr, which});
  }
  if (choices.empty()) return false;

  const Choice chosen = choices[random() % choices.size()];
  if (chosen.thread != nullptr) {
    giveBatonTo(*chosen.thread);
  } else {
    runMainBlock(chosen.lane);
  }
  return true;
}

void FakeScheduler::runMainBlock(MainLane which) {
  const NumberedBlock next = std::move(lane(which).front());
  lane(which).pop_front();
  const bool before = std::exchange(areQueuesBusy_, areQueuesBusy_ || which != MainLane::Events);
  const std::uint64_t interrupted = std::exchange(mainBlock_, next.number);
  const auto goBack = [&] {
    areQueuesBusy_ = before;
    mainBlock_ = interrupted;
    ended_.insert(next.number);
  };
  try {
    guarded(next.block);
  } catch (...) {
    goBack();
    throw;
  }
  goBack();
}

void FakeScheduler::giveBatonTo(VirtualThread& thread) {
  thread.state = VirtualThread::State::Running;
  if (thread.thread.joinable()) {
    thread.wake.release();
  } else {
    thread.thread = std::thread([this, &thread] { threadBody(thread); });
  }
  if (!mainWake_.tryAcquireFor(kStuckAfter)) {
    std::fprintf(stderr, "The virtual thread %s neither sleeps nor ends.\n", thread.name.c_str());
    std::abort();
  }
  if (thread.state == VirtualThread::State::Finished) reap(thread);
  if (!limitFailure_.empty()) throw StepLimitReached(std::exchange(limitFailure_, {}));
}

void FakeScheduler::threadBody(VirtualThread& thread) {
  currentThread = &thread;
  try {
    guarded(thread.block);
  } catch (const Unwind&) {
  } catch (const StepLimitReached& limit) {
    limitFailure_ = limit.what();
  }
  thread.block = nullptr;
  ended_.insert(thread.number);
  thread.state = VirtualThread::State::Finished;
  mainWake_.release();
}

void FakeScheduler::guarded(const Block& block) {
  try {
    block();
  } catch (const Unwind&) {
    throw;
  } catch (const StepLimitReached&) {
    throw;
  } catch (const std::exception& error) {
    exceptionHandler_(error.what());
  } catch (...) {
    exceptionHandler_("something that is no std::exception");
  }
}

void FakeScheduler::reap(VirtualThread& thread) {
  thread.thread.join();
  std::erase_if(threads_, [&](const auto& each) { return each.get() == &thread; });
}

bool FakeScheduler::isDue(const VirtualThread& thread) const {
  if (thread.state == VirtualThread::State::Ready) return thread.wakeAt <= now_ && hasRoomFor(thread);
  if (thread.state != VirtualThread::State::Sleeping) return false;
  return thread.wakeAt <= now_ || (thread.awaited && thread.awaited());
}

// Queues share threads; what stands for another process or for the kernel has its own.
bool FakeScheduler::hasRoomFor(const VirtualThread& thread) const {
  const auto isOfQueues = [](const VirtualThread& one) {
    return one.name.starts_with("global(") || one.name.starts_with("it.");
  };
  if (unruliness_.threadsMax >= threads_.size() || !isOfQueues(thread)) return true;
  const auto running = std::ranges::count_if(
      threads_, [&](const auto& one) { return one->thread.joinable() && isOfQueues(*one); });
  return static_cast<std::size_t>(running) < unruliness_.threadsMax;
}

std::int64_t FakeScheduler::nextWakeUp() const {
  std::int64_t next = kNever;
  for (const auto& thread : threads_) {
    const bool isWaiting = thread->state == VirtualThread::State::Sleeping ||
                           (thread->state == VirtualThread::State::Ready && hasRoomFor(*thread));
    if (isWaiting) next = std::min(next, thread->wakeAt);
  }
  return next;
}

void FakeScheduler::advanceTo(std::int64_t time) {
  if (time == now_) return;
  now_ = time;
  actionsAtThisMoment_ = 0;
}

// SplitMix64: the same numbers from the same seed with every compiler and library.
std::uint64_t FakeScheduler::random() {
  std::uint64_t mixed = (randomState_ += 0x9e3779b97f4a7c15U);
  mixed = (mixed ^ (mixed >> 30U)) * 0xbf58476d1ce4e5b9U;
  mixed = (mixed ^ (mixed >> 27U)) * 0x94d049bb133111ebU;
  return mixed ^ (mixed >> 31U);
}

void FakeScheduler::shutDown() {
  stopping_ = true;
  for (auto& each : lanes_) each.clear();
  std::erase_if(threads_, [](const auto& each) { return each->state == VirtualThread::State::Ready; });
  while (!threads_.empty()) giveBatonTo(*threads_.front());
}

}  // namespace karno::test
