#include "platform/macos/dispatch/dispatch.h"

#include <string>
#include <type_traits>
#include <utility>

#include "platform/cocoa/runtime/run_block.h"
#include "platform/cocoa/runtime/threads.h"
#include "platform/macos/dispatch/gcd_group.h"
#include "platform/macos/dispatch/process_activity.h"

namespace karno::platform {
namespace {

// What a queue holds: the block, and what its queue is called for the console line of a failure.
struct Work {
  Block block;
  std::string owner;
};

void runWork(void* context) noexcept {
  const std::unique_ptr<Work> work(static_cast<Work*>(context));
  runBlock(work->block, work->owner);
}

void enqueue(dispatch_queue_t queue, Block block, std::string owner) {
  auto work = std::make_unique<Work>(Work{std::move(block), std::move(owner)});
  dispatch_async_f(queue, work.release(), runWork);
}

class GCDSerialQueue final : public Queue {
 public:
  explicit GCDSerialQueue(std::string label)
      : label_(std::move(label)), queue_(dispatch_queue_create(label_.c_str(), DISPATCH_QUEUE_SERIAL)) {}

  void async(Block block) override { enqueue(queue_.get(), std::move(block), label_); }

 private:
  struct Release {
    void operator()(dispatch_queue_t queue) const { dispatch_release(queue); }
  };

  const std::string label_;
  // GCD keeps a reference of its own while blocks wait or run, so the last ones run after this is gone.
  const std::unique_ptr<std::remove_pointer_t<dispatch_queue_t>, Release> queue_;
};

}  // namespace

void GCDQueue::async(Block block) { enqueue(queue_, std::move(block), owner_); }

Queue& MacDispatch::globalQueue(QueuePriority priority) {
  return priority == QueuePriority::Background ? background_ : normal_;
}

std::shared_ptr<Queue> MacDispatch::makeSerialQueue(std::string label) {
  return std::make_shared<GCDSerialQueue>(std::move(label));
}

std::shared_ptr<DispatchGroup> MacDispatch::makeGroup() { return std::make_shared<GCDGroup>(); }

std::shared_ptr<void> MacDispatch::beginActivity(const std::string& reason) {
  return std::make_shared<ProcessActivity>(reason);
}

bool MacDispatch::isMainThread() const { return cocoa::isMainThread(); }

}  // namespace karno::platform
