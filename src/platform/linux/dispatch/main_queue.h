#pragma once
#include <deque>
#include <mutex>

#include "platform/dispatch.h"

namespace karno::platform {

// The main thread's serial queue, with the manner of the one of macOS: while a block of it runs, in whose
// midst an alert may be up, no other one does. Any thread may add.
class MainQueue final : public Queue {
 public:
  // Its blocks run on `mainThread`, which must outlive it.
  explicit MainQueue(Queue& mainThread) : mainThread_(mainThread) {}
  void async(Block block) override;

 private:
  void runNext();

  Queue& mainThread_;
  std::mutex mutex_;
  std::deque<Block> blocks_;  // unbounded: a block that was accepted is part of the behaviour
  bool isBusy_ = false;       // a block runs, or is about to
};

}  // namespace karno::platform
