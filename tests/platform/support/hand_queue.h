#pragma once
#include <chrono>
#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <utility>

#include "platform/dispatch.h"

namespace karno::test {

// A main queue whose blocks run when the test's thread says so.
class HandQueue final : public platform::Queue {
 public:
  void async(platform::Block block) override {
    const std::scoped_lock lock(mutex_);
    blocks_.push_back(std::move(block));
    added_.notify_all();
  }

  // Runs blocks as they come until the condition holds. False when that takes too long.
  bool runUntil(const std::function<bool()>& condition,
                std::chrono::milliseconds limit = std::chrono::seconds(60)) {
    const auto giveUpAt = std::chrono::steady_clock::now() + limit;
    while (!condition()) {
      std::unique_lock lock(mutex_);
      if (!added_.wait_until(lock, giveUpAt, [this] { return !blocks_.empty(); })) return false;
      const platform::Block block = std::move(blocks_.front());
      blocks_.pop_front();
      lock.unlock();
      block();
    }
    return true;
  }

  // Runs what comes within that time.
  void runFor(std::chrono::milliseconds time) {
    runUntil([] { return false; }, time);
  }

 private:
  std::mutex mutex_;
  std::condition_variable added_;
  std::deque<platform::Block> blocks_;
};

}  // namespace karno::test
