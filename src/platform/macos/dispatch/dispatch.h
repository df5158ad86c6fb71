#pragma once
#include <dispatch/dispatch.h>

#include "platform/cocoa/runtime/main_events.h"
#include "platform/dispatch.h"
#include "platform/posix/clock.h"

namespace karno::platform {

// A queue of Grand Central Dispatch. GCD keeps a queue alive while blocks wait in it.
class GCDQueue : public Queue {
 public:
  // `queue` is borrowed. `owner` names it in console lines; static storage.
  GCDQueue(dispatch_queue_t queue, const char* owner) : queue_(queue), owner_(owner) {}
  void async(Block block) override;

 private:
  dispatch_queue_t queue_;
  const char* owner_;
};

// Queues of Grand Central Dispatch, whose number of threads GCD limits. Make it on the main thread.
class MacDispatch final : public Dispatch {
 public:
  Queue& mainQueue() override { return mainQueue_; }
  Queue& mainOperationQueue() override { return mainOperationQueue_; }
  Queue& mainEvents() override { return mainEvents_; }
  Queue& globalQueue(QueuePriority priority) override;
  std::shared_ptr<Queue> makeSerialQueue(std::string label) override;
  std::shared_ptr<DispatchGroup> makeGroup() override;
  void sleep(double seconds) override { sleepFor(seconds); }
  std::shared_ptr<void> beginActivity(const std::string& reason) override;
  bool isMainThread() const override;

 private:
  GCDQueue mainQueue_{dispatch_get_main_queue(), "main queue"};
  // The operation queue of the main thread runs on its dispatch queue.
  GCDQueue mainOperationQueue_{dispatch_get_main_queue(), "main operation queue"};
  cocoa::MainEvents mainEvents_;
  GCDQueue normal_{dispatch_get_global_queue(DISPATCH_QUEUE_PRIORITY_DEFAULT, 0), "default global queue"};
  GCDQueue background_{dispatch_get_global_queue(DISPATCH_QUEUE_PRIORITY_BACKGROUND, 0),
                       "background global queue"};
};

}  // namespace karno::platform
