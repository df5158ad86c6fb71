#include "platform/linux/dispatch/main_queue.h"

#include <utility>

#include "platform/cocoa/runtime/guarded.h"

namespace karno::platform {

void MainQueue::async(Block block) {
  const std::scoped_lock lock(mutex_);
  blocks_.push_back(std::move(block));
  if (!std::exchange(isBusy_, true)) mainThread_.async([this] { runNext(); });
}

void MainQueue::runNext() {
  Block block;
  {
    const std::scoped_lock lock(mutex_);
    block = std::move(blocks_.front());
    blocks_.pop_front();
  }
  objc::guardedAndLogged("main queue", block);

  const std::scoped_lock lock(mutex_);
  isBusy_ = !blocks_.empty();
  if (isBusy_) mainThread_.async([this] { runNext(); });
}

}  // namespace karno::platform
