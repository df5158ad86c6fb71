#include "platform/linux/dispatch/thread_pool.h"

#include <algorithm>
#include <string>
#include <system_error>
#include <utility>

#include "platform/cocoa/runtime/run_block.h"
#include "platform/linux/dispatch/threads.h"
#include "platform/posix/console_line.h"

namespace karno::platform {
namespace {

constexpr const char* kIdleThreadName = "Pool";

}  // namespace

void ThreadPool::add(Block block, PoolLane lane) {
  {
    const std::scoped_lock lock(mutex_);
    lanes_[static_cast<std::size_t>(lane)].push_back(std::move(block));
    ++waiting_;
    added_.notify_one();
    if (waiting_ <= static_cast<std::size_t>(idle_) || threads_ >= settings_.threadsMax) return;
    ++threads_;
  }
  startWorker();
}

void ThreadPool::startWorker() {
  try {
    startThread([this] { work(); });
  } catch (const std::system_error& failure) {
    const std::scoped_lock lock(mutex_);
    --threads_;
    writeConsoleLine(std::string("Dispatch: no further thread. Reason: ") + failure.what());
  }
}

void ThreadPool::work() {
  nameThisThread(kIdleThreadName);
  if (settings_.lowered) lowerPriorityOfThisThread();

  Block block;
  std::unique_lock lock(mutex_);
  while (takeNext(lock, block)) {
    lock.unlock();
    runBlock(block, "Dispatch");
    block = nullptr;  // what it holds may call back into the pool when it goes
    lock.lock();
  }
  --threads_;
}

bool ThreadPool::takeNext(std::unique_lock<std::mutex>& lock, Block& block) {
  if (waiting_ == 0) {
    if (idle_ >= settings_.idleThreadsMax) return false;
    ++idle_;
    added_.wait(lock, [this] { return waiting_ != 0; });
    --idle_;
  }
  const auto lane =
      std::find_if(lanes_.begin(), lanes_.end(), [](const auto& blocks) { return !blocks.empty(); });
  block = std::move(lane->front());
  lane->pop_front();
  --waiting_;
  return true;
}

}  // namespace karno::platform
