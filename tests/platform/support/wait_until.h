#pragma once
#include <chrono>
#include <functional>
#include <thread>

namespace karno::test {

// For what another thread or process is to bring about. False when it has not come in a minute.
inline bool waitUntil(const std::function<bool()>& condition) {
  const auto limit = std::chrono::steady_clock::now() + std::chrono::minutes(1);
  while (!condition()) {
    if (std::chrono::steady_clock::now() > limit) return false;
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
  return true;
}

}  // namespace karno::test
