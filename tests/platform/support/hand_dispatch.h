#pragma once
#include <memory>
#include <string>

#include "hand_queue.h"
#include "platform/platform.h"

namespace karno::test {

// This system's dispatch with a main queue whose blocks run when the test's thread says so.
class HandDispatch final : public platform::Dispatch {
 public:
  HandQueue& byHand() { return main_; }

  platform::Queue& mainQueue() override { return main_; }
  platform::Queue& mainOperationQueue() override { return main_; }
  platform::Queue& mainEvents() override { return main_; }
  platform::Queue& globalQueue(platform::QueuePriority priority) override {
    return real_.globalQueue(priority);
  }
  std::shared_ptr<platform::Queue> makeSerialQueue(std::string label) override {
    return real_.makeSerialQueue(std::move(label));
  }
  std::shared_ptr<platform::DispatchGroup> makeGroup() override { return real_.makeGroup(); }
  void sleep(double seconds) override { real_.sleep(seconds); }
  bool isMainThread() const override { return real_.isMainThread(); }

 private:
  platform::Dispatch& real_ = platform::host().dispatch;
  HandQueue main_;
};

}  // namespace karno::test
