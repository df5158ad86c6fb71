#include "interposition.h"

#include <cxxabi.h>
#include <dlfcn.h>
#include <pthread.h>
#include <sched.h>

#include <cerrno>
#include <map>

// The functions of the C and C++ libraries by which threads wait for each other, in front of the libraries'
// own. They must not need a static variable with a guard.
namespace karno::simulation {
namespace {

constexpr std::uint64_t kMainThread = 0;
constexpr double kForeverSeconds = 1e9;

// One thread of a simulation runs at a time, so nothing of this needs a lock.
struct Held {
  std::uint64_t thread = 0;
  int times = 0;
};

struct Waits {
  explicit Waits(test::FakeScheduler& ofThreads) : scheduler(ofThreads) {}
  test::FakeScheduler& scheduler;
  std::function<void(const std::string&)> onDeadlock = {};
  std::map<const void*, Held> holders = {};
  std::map<std::uint64_t, const void*> waiting = {};
  std::map<const void*, std::uint64_t> signals = {};  // that condition variables have had
};

constinit Waits* waits = nullptr;  // lives as long as the process

std::uint64_t self() {
  return waits->scheduler.isMainThread() ? kMainThread : waits->scheduler.currentBlock();
}

bool isSimulated() {
  return waits != nullptr && (waits->scheduler.isMainThread() || waits->scheduler.currentBlock() != 0);
}

// Whether somebody who waits for `lock` waits for himself in the end.
bool isCircle(const void* lock) {
  for (auto holder = waits->holders.find(lock); holder != waits->holders.end();) {
    if (holder->second.thread == self()) return true;
    const auto next = waits->waiting.find(holder->second.thread);
    if (next == waits->waiting.end()) return false;
    holder = waits->holders.find(next->second);
  }
  return false;
}

void waitFor(const void* lock) {
  if (isCircle(lock))
    waits->onDeadlock("the thread " + waits->scheduler.currentThreadName() + " waits for a lock in a circle");
  waits->waiting[self()] = lock;
  waits->scheduler.waitUntil([lock] { return !waits->holders.contains(lock); }, kForeverSeconds);
  waits->waiting.erase(self());
}

void take(const void* lock) {
  Held& held = waits->holders[lock];
  held.thread = self();
  ++held.times;
}

void give(const void* lock) {
  const auto held = waits->holders.find(lock);
  if (held != waits->holders.end() && --held->second.times == 0) waits->holders.erase(held);
}

template <class Function>
Function* original(Function*& kept, const char* name, const char* version = nullptr) {
  if (kept != nullptr) return kept;
  void* found = version != nullptr ? ::dlvsym(RTLD_NEXT, name, version) : nullptr;
  if (found == nullptr) found = ::dlsym(RTLD_NEXT, name);
  return kept = reinterpret_cast<Function*>(found);
}

// That of the condition variables that there are today, on machines that have older ones as well.
constexpr const char* kConditionVersion = "GLIBC_2.3.2";

constinit int (*originalLock)(pthread_mutex_t*) = nullptr;
constinit int (*originalTryLock)(pthread_mutex_t*) = nullptr;
constinit int (*originalUnlock)(pthread_mutex_t*) = nullptr;
constinit int (*originalWait)(pthread_cond_t*, pthread_mutex_t*) = nullptr;
constinit int (*originalSignal)(pthread_cond_t*) = nullptr;
constinit int (*originalBroadcast)(pthread_cond_t*) = nullptr;

int tryLock(pthread_mutex_t* mutex) { return original(originalTryLock, "pthread_mutex_trylock")(mutex); }

// The two first bytes of a guard: whether the variable is there, and whether somebody makes it.
bool isMade(const void* guard) {
  return __atomic_load_n(static_cast<const char*>(guard), __ATOMIC_ACQUIRE) != 0;
}
char& isBeingMade(void* guard) { return static_cast<char*>(guard)[1]; }

}  // namespace

void interpose(test::FakeScheduler& scheduler, std::function<void(const std::string&)> onDeadlock) {
  static Waits all(scheduler);
  all.onDeadlock = std::move(onDeadlock);
  waits = &all;
}

}  // namespace karno::simulation

using namespace karno::simulation;

extern "C" {

int pthread_mutex_lock(pthread_mutex_t* mutex) noexcept {
  if (!isSimulated()) return original(originalLock, "pthread_mutex_lock")(mutex);
  waits->scheduler.yield();
  int result = 0;
  while ((result = tryLock(mutex)) == EBUSY) waitFor(mutex);
  if (result == 0) take(mutex);
  return result;
}

int pthread_mutex_trylock(pthread_mutex_t* mutex) noexcept {
  const int result = tryLock(mutex);
  if (result == 0 && isSimulated()) take(mutex);
  return result;
}

int pthread_mutex_unlock(pthread_mutex_t* mutex) noexcept {
  if (isSimulated()) give(mutex);
  return original(originalUnlock, "pthread_mutex_unlock")(mutex);
}

int pthread_cond_wait(pthread_cond_t* condition, pthread_mutex_t* mutex) {
  if (!isSimulated()) return original(originalWait, "pthread_cond_wait", kConditionVersion)(condition, mutex);
  const std::uint64_t before = waits->signals[condition];
  pthread_mutex_unlock(mutex);
  waits->scheduler.waitUntil([=] { return waits->signals[condition] != before; }, kForeverSeconds);
  return pthread_mutex_lock(mutex);
}

// Who wakes without need looks again: so one signal may wake all.
int pthread_cond_signal(pthread_cond_t* condition) noexcept {
  if (isSimulated()) ++waits->signals[condition];
  return original(originalSignal, "pthread_cond_signal", kConditionVersion)(condition);
}

int pthread_cond_broadcast(pthread_cond_t* condition) noexcept {
  if (isSimulated()) ++waits->signals[condition];
  return original(originalBroadcast, "pthread_cond_broadcast", kConditionVersion)(condition);
}

}  // extern "C"

namespace __cxxabiv1 {

extern "C" int __cxa_guard_acquire(__guard* guard) {
  while (!isMade(guard)) {
    if (__atomic_exchange_n(&isBeingMade(guard), 1, __ATOMIC_ACQUIRE) == 0) {
      if (isSimulated()) take(guard);
      return 1;
    }
    if (isSimulated()) {
      waitFor(guard);
    } else {
      ::sched_yield();
    }
  }
  return 0;
}

extern "C" void __cxa_guard_release(__guard* guard) noexcept {
  isBeingMade(guard) = 0;
  __atomic_store_n(reinterpret_cast<char*>(guard), 1, __ATOMIC_RELEASE);
  if (isSimulated()) give(guard);
}

extern "C" void __cxa_guard_abort(__guard* guard) noexcept {
  isBeingMade(guard) = 0;
  if (isSimulated()) give(guard);
}

}  // namespace __cxxabiv1
