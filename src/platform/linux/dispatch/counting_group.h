#pragma once
#include <condition_variable>
#include <cstdint>
#include <mutex>

#include "platform/dispatch.h"

namespace karno::platform {

// A group that waits by the monotonic clock, so that setting the time of day neither ends a wait nor makes it
// longer.
class CountingGroup final : public DispatchGroup {
 public:
  void enter() override;
  void leave() override;
  bool wait(std::int64_t nanoseconds) override;

 private:
  std::mutex mutex_;
  std::condition_variable empty_;
  std::int64_t inside_ = 0;
};

}  // namespace karno::platform
