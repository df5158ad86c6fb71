#pragma once
#include <deque>
#include <mutex>

#include "platform/cocoa/runtime/main_thread_call.h"
#include "platform/dispatch.h"

namespace karno::platform::cocoa {

// Blocks that run on the main thread once its run loop turns, also while a modal alert is up, whoever showed
// it: what a timer or a notification would do. Any thread may add; what a thread added first begins first.
// Made and destroyed on the main thread; blocks that have not run by then never do.
class MainEvents final : public Queue {
 public:
  MainEvents();
  void async(Block block) override;

 private:
  void runNext();

  std::mutex mutex_;
  std::deque<Block> blocks_;  // unbounded: a block that was accepted is part of the behaviour
  MainThreadCall call_;
};

}  // namespace karno::platform::cocoa
