#include "platform/posix/clock.h"

#include <algorithm>
#include <chrono>
#include <thread>

namespace karno::platform {
namespace {

constexpr double kSleepSecondsMax = 1e9;  // three decades; keeps the arithmetic within its types

}  // namespace

Date SystemClock::now() const {
  return std::chrono::time_point_cast<std::chrono::nanoseconds>(std::chrono::system_clock::now());
}

void sleepFor(double seconds) {
  if (seconds > 0)
    std::this_thread::sleep_for(std::chrono::duration<double>(std::min(seconds, kSleepSecondsMax)));
}

}  // namespace karno::platform
