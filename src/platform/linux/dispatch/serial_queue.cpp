#include "platform/linux/dispatch/serial_queue.h"

#include <utility>

#include "platform/cocoa/runtime/run_block.h"
#include "platform/linux/dispatch/threads.h"

namespace karno::platform {
namespace {

constexpr const char* kPoolThreadName = "Pool";

std::string lastPart(const std::string& label) {
  return label.substr(label.rfind('.') + 1);  // the whole label when it has no point
}

}  // namespace

SerialQueue::SerialQueue(ThreadPool& pool, std::string label) : pool_(pool), threadName_(lastPart(label)) {}

void SerialQueue::async(Block block) {
  {
    const std::scoped_lock lock(mutex_);
    blocks_.push_back(std::move(block));
    if (std::exchange(running_, true)) return;
  }
  pool_.add([self = shared_from_this()] { self->drain(); });
}

void SerialQueue::drain() {
  nameThisThread(threadName_);
  std::unique_lock lock(mutex_);
  while (!blocks_.empty()) {
    Block block = std::move(blocks_.front());
    blocks_.pop_front();
    lock.unlock();
    runBlock(block, "Dispatch");
    block = nullptr;  // what it holds may add to this queue when it goes
    lock.lock();
  }
  running_ = false;
  lock.unlock();
  nameThisThread(kPoolThreadName);
}

}  // namespace karno::platform
