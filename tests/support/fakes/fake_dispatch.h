#pragma once
#include <memory>
#include <string>
#include <vector>

#include "fake_scheduler.h"
#include "platform/dispatch.h"

namespace karno::test {

// Queues on virtual threads. A thread is named after its queue: "main", "global(0)", "global(-32768)", or the
// label of a serial queue.
class FakeDispatch final : public platform::Dispatch {
 public:
  explicit FakeDispatch(FakeScheduler& scheduler);
  ~FakeDispatch() override;

  platform::Queue& mainQueue() override;
  platform::Queue& mainOperationQueue() override;
  platform::Queue& mainEvents() override;
  platform::Queue& globalQueue(platform::QueuePriority priority) override;
  std::shared_ptr<platform::Queue> makeSerialQueue(std::string label) override;
  std::shared_ptr<platform::DispatchGroup> makeGroup() override;
  void sleep(double seconds) override;
  bool isMainThread() const override;

  std::shared_ptr<void> beginActivity(const std::string& reason) override;

  // What the activities are for that go on now, in the order begun.
  const std::vector<std::string>& activities() const { return *activities_; }

  // Labels of the serial queues in the order made.
  const std::vector<std::string>& serialQueues() const { return serialQueues_; }

  // Which queue each block was given to, in that order: "main queue", "main operation queue", "main events",
  // or the name of the thread that is to run it.
  const std::vector<std::string>& submissions() const { return submissions_; }

  // The same for the blocks of the two main queues alone.
  std::vector<std::string> mainSubmissions() const;

 private:
  class MainQueue;
  class GlobalQueue;
  class SerialQueue;
  class Group;

  FakeScheduler& scheduler_;
  std::unique_ptr<MainQueue> mainQueue_;
  std::unique_ptr<MainQueue> mainOperationQueue_;
  std::unique_ptr<MainQueue> mainEvents_;
  std::vector<std::unique_ptr<GlobalQueue>> globalQueues_;
  std::shared_ptr<std::vector<std::string>> activities_ = std::make_shared<std::vector<std::string>>();
  std::vector<std::string> serialQueues_;
  std::vector<std::string> submissions_;
};

}  // namespace karno::test
