#include "peers.h"

#include <chrono>
#include <thread>

namespace karno::bench {

void waitUntil(const std::function<bool()>& isSo) {
  const auto giveUpAt = std::chrono::steady_clock::now() + std::chrono::minutes(1);
  while (!isSo() && std::chrono::steady_clock::now() < giveUpAt) {
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
}

}  // namespace karno::bench
