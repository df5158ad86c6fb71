#pragma once
#include <condition_variable>
#include <deque>
#include <mutex>

#include "platform/dispatch.h"

namespace karno::platform {

struct PoolSettings {
  int threadsMax = 0;
  bool lowered = false;  // its threads let everything else go first
  int idleThreadsMax = 4;
};

// Threads that run blocks. A block never waits while another thread is allowed,
// since any block may occupy its thread for ever. An idle thread sleeps without a timer; the idle ones
// beyond idleThreadsMax end. Unbounded: a block that was accepted is part of the behaviour.
// Lives for ever.
class ThreadPool {
 public:
  explicit ThreadPool(PoolSettings settings) : settings_(settings) {}
  ThreadPool(const ThreadPool&) = delete;
  ThreadPool& operator=(const ThreadPool&) = delete;

  void add(Block block);

 private:
  void startWorker();
  void work();
  bool takeNext(std::unique_lock<std::mutex>& lock, Block& block);

  const PoolSettings settings_;
  std::mutex mutex_;
  std::condition_variable added_;
  std::deque<Block> blocks_;
  int threads_ = 0;
  int idle_ = 0;  // threads that wait for a block
};

class PoolQueue final : public Queue {
 public:
  explicit PoolQueue(ThreadPool& pool) : pool_(pool) {}
  void async(Block block) override { pool_.add(std::move(block)); }

 private:
  ThreadPool& pool_;
};

}  // namespace karno::platform
