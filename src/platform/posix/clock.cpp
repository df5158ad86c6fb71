#include "platform/posix/clock.h"

#include <chrono>

namespace karno::platform {

Date SystemClock::now() const {
  return std::chrono::time_point_cast<std::chrono::nanoseconds>(std::chrono::system_clock::now());
}

}  // namespace karno::platform
