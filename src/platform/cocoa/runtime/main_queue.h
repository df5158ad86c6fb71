#pragma once
#include <deque>
#include <mutex>

#include "platform/cocoa/runtime/main_thread_call.h"
#include "platform/dispatch.h"

namespace karno::platform::cocoa {

// A serial queue whose blocks run on the main thread, once its run loop turns, also while a modal alert is
// up. A block that runs a modal loop itself holds up none of the later ones. Any thread may add; what a
// thread added first runs first. Made and destroyed on the main thread; blocks that have not run by then
// never do.
class MainQueue final : public Queue {
 public:
  MainQueue();
  void async(Block block) override;

 private:
  void runNext();

  std::mutex mutex_;
  std::deque<Block> blocks_;  // unbounded: a block that was accepted is part of the behaviour
  MainThreadCall call_;
};

}  // namespace karno::platform::cocoa
