#include "platform/cocoa/main_queue.h"

#include "platform/cocoa/guarded.h"

namespace karno::platform::cocoa {

MainQueue::MainQueue() : callback_([this](objc::Id) { runNext(); }) {}

void MainQueue::async(Block block) {
  bool first = false;
  {
    const std::lock_guard lock(mutex_);
    first = blocks_.empty();
    blocks_.push_back(std::move(block));
  }
  // While blocks wait, exactly one perform is under way; it arms its successor.
  if (first) {
    arm();
  }
}

void MainQueue::arm() {
  const objc::AutoreleasePool pool;
  const objc::Sel action = Callback::action();
  objc::send<void>(callback_.target(), "performSelectorOnMainThread:withObject:waitUntilDone:", action,
                   nullptr, false);
}

void MainQueue::runNext() {
  Block block;
  bool more = false;
  {
    const std::lock_guard lock(mutex_);
    block = std::move(blocks_.front());
    blocks_.pop_front();
    more = !blocks_.empty();
  }
  // Armed before the block runs: the block may show an alert, and what follows runs in its modal loop.
  if (more) {
    arm();
  }
  objc::guardedAndLogged("main queue", block);
}

}  // namespace karno::platform::cocoa
