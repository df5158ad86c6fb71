#pragma once
#include <deque>
#include <memory>
#include <mutex>
#include <string>

#include "platform/linux/dispatch/thread_pool.h"

namespace karno::platform {

// Runs its blocks one after another on a pool's threads, which bear the last part of the label meanwhile. The
// running thread keeps the queue alive. Unbounded: a block that was accepted is part of the behaviour.
class SerialQueue final : public Queue, public std::enable_shared_from_this<SerialQueue> {
 public:
  SerialQueue(ThreadPool& pool, std::string label);
  void async(Block block) override;

 private:
  void drain();

  ThreadPool& pool_;
  const std::string threadName_;
  std::mutex mutex_;
  std::deque<Block> blocks_;
  bool running_ = false;
};

}  // namespace karno::platform
