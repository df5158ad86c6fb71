#include "platform/cocoa/runtime/main_events.h"

#include "platform/cocoa/runtime/guarded.h"
#include "platform/cocoa/runtime/objc.h"

namespace karno::platform::cocoa {

MainEvents::MainEvents() : call_([this] { runNext(); }) {}

void MainEvents::async(Block block) {
  bool isOnlyOne = false;
  {
    const std::lock_guard lock(mutex_);
    isOnlyOne = blocks_.empty();
    blocks_.push_back(std::move(block));
  }
  // While blocks wait, exactly one call is requested, which requests its successor.
  if (isOnlyOne) {
    call_.request();
  }
}

void MainEvents::runNext() {
  Block block;
  bool hasMore = false;
  {
    const std::lock_guard lock(mutex_);
    block = std::move(blocks_.front());
    blocks_.pop_front();
    hasMore = !blocks_.empty();
  }
  // Before the block runs: it may show a window that is modal, and what follows runs in that one's run loop.
  if (hasMore) {
    call_.request();
  }
  const objc::AutoreleasePool pool;
  objc::guardedAndLogged("main events", block);
}

}  // namespace karno::platform::cocoa
