#include "platform/macos/dispatch/dispatch.h"

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <ctime>
#include <string>
#include <type_traits>
#include <utility>

#include "platform/cocoa/runtime/run_block.h"
#include "platform/cocoa/runtime/threads.h"
#include "platform/macos/dispatch/gcd_group.h"

namespace karno::platform {
namespace {

constexpr double kSleepSecondsMax = 1e9;  // three decades; keeps the arithmetic within its types
constexpr double kNanosecondsPerSecond = 1e9;

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
  switch (priority) {
    case QueuePriority::High:
      return high_;
    case QueuePriority::Default:
      return normal_;
    case QueuePriority::Low:
      return low_;
    case QueuePriority::Background:
      return background_;
  }
  return normal_;
}

std::shared_ptr<Queue> MacDispatch::makeSerialQueue(std::string label) {
  return std::make_shared<GCDSerialQueue>(std::move(label));
}

std::shared_ptr<DispatchGroup> MacDispatch::makeGroup() { return std::make_shared<GCDGroup>(); }

void MacDispatch::sleep(double seconds) {
  if (!(seconds > 0)) return;
  const double limited = std::min(seconds, kSleepSecondsMax);
  const double whole = std::floor(limited);
  timespec left = {.tv_sec = static_cast<time_t>(whole),
                   .tv_nsec = static_cast<long>((limited - whole) * kNanosecondsPerSecond)};
  while (::nanosleep(&left, &left) == -1 && errno == EINTR) {
  }
}

bool MacDispatch::isMainThread() const { return cocoa::isMainThread(); }

}  // namespace karno::platform
