#include "platform/linux/dispatch/dispatch.h"

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <ctime>
#include <utility>

#include "platform/cocoa/runtime/threads.h"
#include "platform/linux/dispatch/counting_group.h"
#include "platform/linux/dispatch/serial_queue.h"

namespace karno::platform {
namespace {

constexpr double kSleepSecondsMax = 1e9;  // three decades; keeps the arithmetic within its types
constexpr long kNanosecondsPerSecond = 1'000'000'000;

timespec momentAfter(double seconds) {
  timespec moment = {};
  ::clock_gettime(CLOCK_MONOTONIC, &moment);
  const double whole = std::floor(seconds);
  moment.tv_sec += static_cast<time_t>(whole);
  moment.tv_nsec += static_cast<long>((seconds - whole) * static_cast<double>(kNanosecondsPerSecond));
  if (moment.tv_nsec >= kNanosecondsPerSecond) {
    moment.tv_nsec -= kNanosecondsPerSecond;
    ++moment.tv_sec;
  }
  return moment;
}

}  // namespace

Queue& LinuxDispatch::globalQueue(QueuePriority priority) {
  switch (priority) {
    case QueuePriority::High:
      return high_;
    case QueuePriority::Default:
      return normal_;
    case QueuePriority::Low:
      return low_;
    case QueuePriority::Background:
      return background_;
  }
  return normal_;
}

std::shared_ptr<Queue> LinuxDispatch::makeSerialQueue(std::string label) {
  return std::make_shared<SerialQueue>(pool_, std::move(label));
}

std::shared_ptr<DispatchGroup> LinuxDispatch::makeGroup() { return std::make_shared<CountingGroup>(); }

void LinuxDispatch::sleep(double seconds) {
  if (!(seconds > 0)) return;
  const timespec end = momentAfter(std::min(seconds, kSleepSecondsMax));
  while (::clock_nanosleep(CLOCK_MONOTONIC, TIMER_ABSTIME, &end, nullptr) == EINTR) {
  }
}

bool LinuxDispatch::isMainThread() const { return cocoa::isMainThread(); }

}  // namespace karno::platform
