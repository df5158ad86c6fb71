#pragma once
#include <algorithm>
#include <chrono>

namespace karno::platform {

// How long to wait before the next attempt at what has failed: at first briefly, then twice as long each
// time.
class GrowingPause {
 public:
  GrowingPause(std::chrono::milliseconds first, std::chrono::milliseconds longest)
      : first_(first), longest_(longest), next_(first) {}

  std::chrono::milliseconds next() {
    const std::chrono::milliseconds pause = next_;
    next_ = std::min(2 * pause, longest_);
    return pause;
  }

  // It has succeeded.
  void reset() { next_ = first_; }

 private:
  std::chrono::milliseconds first_;
  std::chrono::milliseconds longest_;
  std::chrono::milliseconds next_;
};

}  // namespace karno::platform
