#pragma once
#include <condition_variable>
#include <cstdint>
#include <deque>
#include <map>
#include <mutex>
#include <optional>

#include "platform/processes.h"

namespace karno::platform {

// How many children are remembered after they have gone; of more the oldest are forgotten.
inline constexpr std::size_t kReapedChildrenMax = 1024;

// Shares the end of each child between its watcher and those who wait for it with waitpid(). A child's status
// can be collected only once: the watcher leaves it to a pending waitpid() and hears of the status from
// there. Once it is collected, the system may give the process identifier to a stranger. Safe from any
// thread; lives for ever.
class ChildRegistry {
 public:
  static ChildRegistry& instance();

  // To be called before anyone else knows the process identifier; watchToEnd() must follow.
  void beginWatching(std::int32_t processIdentifier);

  // Blocks until the child has ended, and reaps it unless a waitpid() of ours was pending; a child that is
  // stopped has not ended. The result has the form of waitpid()'s status; absent when somebody else took the
  // child away.
  std::optional<int> watchToEnd(std::int32_t processIdentifier);

  // waitpid(processIdentifier, nullptr, 0), announced to the watcher. Interruptions are not reported.
  WaitResult waitForChild(std::int32_t processIdentifier);

  // kill(processIdentifier, SIGTERM): 0 or its errno. ESRCH for a child that was reaped, whoever has its
  // process identifier now.
  int terminate(std::int32_t processIdentifier);

 private:
  struct Child {
    bool isWatched = false;
    int pendingWaiters = 0;
    std::optional<int> status;
  };

  void forgetIfUnused(std::int32_t processIdentifier);
  void noteReaped(std::int32_t processIdentifier);

  std::mutex mutex_;
  std::condition_variable changed_;
  std::map<std::int32_t, Child> children_;
  std::deque<std::int32_t> reaped_;  // the oldest first
};

WaitResult waitpidRegistered(std::int32_t processIdentifier);

}  // namespace karno::platform
