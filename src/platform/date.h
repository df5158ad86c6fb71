#pragma once
#include <chrono>
#include <cstdint>

namespace karno::platform {

// A moment of the wall clock, in nanoseconds since 1970-01-01T00:00:00Z.
using Date = std::chrono::sys_time<std::chrono::nanoseconds>;

inline double secondsBetween(Date earlier, Date later) {
  return std::chrono::duration<double>(later - earlier).count();
}

}  // namespace karno::platform
