#pragma once
#include "platform/cocoa/runtime/main_events.h"
#include "platform/dispatch.h"
#include "platform/linux/dispatch/main_queue.h"
#include "platform/linux/dispatch/thread_pool.h"
#include "platform/posix/clock.h"

namespace karno::platform {

// Queues on threads of our own, 512 at most. Meant to live for ever: its threads are never joined. Make it on
// the main thread.
class LinuxDispatch final : public Dispatch {
 public:
  Queue& mainQueue() override { return mainQueue_; }
  Queue& mainOperationQueue() override { return mainQueue_; }
  Queue& mainEvents() override { return mainEvents_; }
  Queue& globalQueue(QueuePriority priority) override;
  std::shared_ptr<Queue> makeSerialQueue(std::string label) override;
  std::shared_ptr<DispatchGroup> makeGroup() override;
  void sleep(double seconds) override { sleepFor(seconds); }
  bool isMainThread() const override;

 private:
  cocoa::MainEvents mainEvents_;
  MainQueue mainQueue_{mainEvents_};
  ThreadPool pool_{{.threadsMax = 448}};
  ThreadPool backgroundPool_{{.threadsMax = 64, .lowered = true}};
  PoolQueue normal_{pool_};
  PoolQueue background_{backgroundPool_};
};

}  // namespace karno::platform
