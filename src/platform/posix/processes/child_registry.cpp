#include "platform/posix/processes/child_registry.h"

#include <signal.h>
#include <sys/wait.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <thread>

#include "platform/never_destroyed.h"
#include "platform/posix/retry.h"

namespace karno::platform {
namespace {

constexpr std::chrono::milliseconds kShortestPause{50};
constexpr std::chrono::milliseconds kLongestPause{500};

bool isEnd(const siginfo_t& change) {
  return change.si_code == CLD_EXITED || change.si_code == CLD_KILLED || change.si_code == CLD_DUMPED;
}

// On macOS waitid() also returns, each time anew, for a child that is merely stopped. Fails with ECHILD when
// somebody was quicker to reap the child, or when it is no child of this process.
void waitForEndOf(std::int32_t processIdentifier) {
  for (auto pause = kShortestPause;; pause = std::min(2 * pause, kLongestPause)) {
    siginfo_t change = {};
    const int result = retryOnInterrupt(
        [&] { return ::waitid(P_PID, static_cast<id_t>(processIdentifier), &change, WEXITED | WNOWAIT); });
    if (result != 0 || isEnd(change)) return;
    std::this_thread::sleep_for(pause);
  }
}

}  // namespace

ChildRegistry& ChildRegistry::instance() {
  static NeverDestroyed<ChildRegistry> registry;
  return registry.get();
}

void ChildRegistry::beginWatching(std::int32_t processIdentifier) {
  const std::scoped_lock lock(mutex_);
  Child& child = children_[processIdentifier];
  child.isWatched = true;
  child.status.reset();
  std::erase(reaped_, processIdentifier);
}

std::optional<int> ChildRegistry::watchToEnd(std::int32_t processIdentifier) {
  waitForEndOf(processIdentifier);

  std::unique_lock lock(mutex_);
  Child& child = children_[processIdentifier];
  changed_.wait(lock, [&] { return child.status.has_value() || child.pendingWaiters == 0; });

  std::optional<int> end = child.status;
  int status = 0;
  if (!end && ::waitpid(processIdentifier, &status, WNOHANG) == processIdentifier) end = status;
  child.isWatched = false;
  forgetIfUnused(processIdentifier);
  noteReaped(processIdentifier);
  return end;
}

WaitResult ChildRegistry::waitForChild(std::int32_t processIdentifier) {
  {
    const std::scoped_lock lock(mutex_);
    ++children_[processIdentifier].pendingWaiters;
  }

  waitForEndOf(processIdentifier);

  // Under the lock, so that nobody signals the process identifier between the reaping and the note of it.
  const std::scoped_lock lock(mutex_);
  int status = 0;
  WaitResult wait;
  wait.result = ::waitpid(processIdentifier, &status, WNOHANG);
  if (wait.result == -1) wait.error = errno;
  if (wait.result == processIdentifier) noteReaped(processIdentifier);
  --children_[processIdentifier].pendingWaiters;
  const auto reaped = children_.find(wait.result);
  if (reaped != children_.end() && reaped->second.isWatched) reaped->second.status = status;
  forgetIfUnused(processIdentifier);
  changed_.notify_all();
  return wait;
}

int ChildRegistry::terminate(std::int32_t processIdentifier) {
  const std::scoped_lock lock(mutex_);
  if (std::ranges::find(reaped_, processIdentifier) != reaped_.end()) return ESRCH;
  return ::kill(processIdentifier, SIGTERM) == 0 ? 0 : errno;
}

void ChildRegistry::noteReaped(std::int32_t processIdentifier) {
  std::erase(reaped_, processIdentifier);
  reaped_.push_back(processIdentifier);
  if (reaped_.size() > kReapedChildrenMax) reaped_.pop_front();
}

void ChildRegistry::forgetIfUnused(std::int32_t processIdentifier) {
  const auto found = children_.find(processIdentifier);
  if (found != children_.end() && !found->second.isWatched && found->second.pendingWaiters == 0) {
    children_.erase(found);
  }
}

WaitResult waitpidRegistered(std::int32_t processIdentifier) {
  return ChildRegistry::instance().waitForChild(processIdentifier);
}

}  // namespace karno::platform
