#include "platform/linux/dispatch/counting_group.h"

#include <algorithm>
#include <chrono>

namespace karno::platform {
namespace {

// A century; longer waits would leave the clock's range.
constexpr std::chrono::nanoseconds kWaitMax = std::chrono::hours(24 * 36525);

}  // namespace

void CountingGroup::enter() {
  const std::scoped_lock lock(mutex_);
  ++inside_;
}

void CountingGroup::leave() {
  // Told under the lock: who waits may let the group go as soon as it is empty.
  const std::scoped_lock lock(mutex_);
  if (--inside_ == 0) empty_.notify_all();
}

bool CountingGroup::wait(std::int64_t nanoseconds) {
  std::unique_lock lock(mutex_);
  const auto time = std::clamp(std::chrono::nanoseconds(nanoseconds), std::chrono::nanoseconds(0), kWaitMax);
  return empty_.wait_until(lock, std::chrono::steady_clock::now() + time, [this] { return inside_ == 0; });
}

}  // namespace karno::platform
