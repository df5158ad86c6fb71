#pragma once
#include <array>
#include <condition_variable>
#include <cstddef>
#include <deque>
#include <mutex>

#include "platform/dispatch.h"

namespace karno::platform {

enum class PoolLane : std::size_t { High, Normal, Low };

struct PoolSettings {
  int threadsMax = 0;
  bool lowered = false;  // its threads let everything else go first
  int idleThreadsMax = 4;
};

// Threads that run blocks, those of a higher lane first. A block never waits while another thread is allowed,
// since any block may occupy its thread for ever. An idle thread sleeps without a timer; the idle ones
// beyond idleThreadsMax end. The lanes are unbounded: a block that was accepted is part of the behaviour.
// Lives for ever.
class ThreadPool {
 public:
  explicit ThreadPool(PoolSettings settings) : settings_(settings) {}
  ThreadPool(const ThreadPool&) = delete;
  ThreadPool& operator=(const ThreadPool&) = delete;

  void add(Block block, PoolLane lane);

 private:
  void startWorker();
  void work();
  bool takeNext(std::unique_lock<std::mutex>& lock, Block& block);

  const PoolSettings settings_;
  std::mutex mutex_;
  std::condition_variable added_;
  std::array<std::deque<Block>, 3> lanes_;
  std::size_t waiting_ = 0;  // blocks in all lanes
  int threads_ = 0;
  int idle_ = 0;  // threads that wait for a block
};

class PoolQueue final : public Queue {
 public:
  PoolQueue(ThreadPool& pool, PoolLane lane) : pool_(pool), lane_(lane) {}
  void async(Block block) override { pool_.add(std::move(block), lane_); }

 private:
  ThreadPool& pool_;
  const PoolLane lane_;
};

}  // namespace karno::platform
