#include "fake_dispatch.h"

#include <algorithm>
#include <deque>
#include <iterator>
#include <utility>

namespace karno::test {

using platform::Block;
using platform::Queue;
using platform::QueuePriority;

namespace {

constexpr const char* kMainQueue = "main queue";
constexpr const char* kMainOperationQueue = "main operation queue";
constexpr const char* kMainEvents = "main events";

}  // namespace

class FakeDispatch::MainQueue final : public Queue {
 public:
  MainQueue(FakeDispatch& dispatch, MainLane lane, const char* name)
      : dispatch_(dispatch), lane_(lane), name_(name) {}
  void async(Block block) override {
    dispatch_.submissions_.emplace_back(name_);
    dispatch_.scheduler_.addToMain(lane_, std::move(block));
  }

 private:
  FakeDispatch& dispatch_;
  MainLane lane_;
  const char* name_;
};

class FakeDispatch::GlobalQueue final : public Queue {
 public:
  GlobalQueue(FakeDispatch& dispatch, QueuePriority ofQueue) : priority(ofQueue), dispatch_(dispatch) {}
  void async(Block block) override {
    // By the numbers that the Mac has for them.
    const std::string thread = priority == QueuePriority::Background ? "global(-32768)" : "global(0)";
    dispatch_.submissions_.push_back(thread);
    dispatch_.scheduler_.addThread(thread, std::move(block));
  }

  const QueuePriority priority;

 private:
  FakeDispatch& dispatch_;
};

// One virtual thread per block; the next one is made when the block before it has ended.
class FakeDispatch::SerialQueue final : public Queue, public std::enable_shared_from_this<SerialQueue> {
 public:
  SerialQueue(FakeDispatch& dispatch, std::string label) : dispatch_(dispatch), label_(std::move(label)) {}

  void async(Block block) override {
    dispatch_.submissions_.push_back(label_);
    blocks_.push_back(std::move(block));
    if (!busy_) runNext();
  }

 private:
  // Starts the next block when its owner ends, also by an exception.
  class Turn {
   public:
    explicit Turn(SerialQueue& queue) : queue_(queue) {}
    ~Turn() { queue_.runNext(); }
    Turn(const Turn&) = delete;
    Turn& operator=(const Turn&) = delete;

   private:
    SerialQueue& queue_;
  };

  void runNext() {
    busy_ = !blocks_.empty();
    if (!busy_) return;
    Block block = std::move(blocks_.front());
    blocks_.pop_front();
    dispatch_.scheduler_.addThread(label_, [self = shared_from_this(), run = std::move(block)] {
      const Turn turn(*self);
      run();
    });
  }

  FakeDispatch& dispatch_;
  const std::string label_;
  std::deque<Block> blocks_;
  bool busy_ = false;
};

class FakeDispatch::Group final : public platform::DispatchGroup {
 public:
  explicit Group(FakeScheduler& scheduler) : scheduler_(scheduler) {}
  void enter() override { ++inside_; }
  void leave() override { --inside_; }

  bool wait(std::int64_t nanoseconds) override {
    return scheduler_.waitUntil([this] { return inside_ == 0; }, static_cast<double>(nanoseconds) / 1e9);
  }

 private:
  FakeScheduler& scheduler_;
  int inside_ = 0;
};

FakeDispatch::FakeDispatch(FakeScheduler& scheduler)
    : scheduler_(scheduler),
      mainQueue_(std::make_unique<MainQueue>(*this, MainLane::DispatchQueue, kMainQueue)),
      mainOperationQueue_(std::make_unique<MainQueue>(*this, MainLane::OperationQueue, kMainOperationQueue)),
      mainEvents_(std::make_unique<MainQueue>(*this, MainLane::Events, kMainEvents)) {
  for (const QueuePriority priority : {QueuePriority::Default, QueuePriority::Background}) {
    globalQueues_.push_back(std::make_unique<GlobalQueue>(*this, priority));
  }
}

FakeDispatch::~FakeDispatch() = default;

Queue& FakeDispatch::mainQueue() { return *mainQueue_; }

Queue& FakeDispatch::mainOperationQueue() { return *mainOperationQueue_; }

Queue& FakeDispatch::mainEvents() { return *mainEvents_; }

Queue& FakeDispatch::globalQueue(QueuePriority priority) {
  for (const auto& queue : globalQueues_) {
    if (queue->priority == priority) return *queue;
  }
  throw std::invalid_argument("no global queue has this priority");
}

std::shared_ptr<Queue> FakeDispatch::makeSerialQueue(std::string label) {
  serialQueues_.push_back(label);
  return std::make_shared<SerialQueue>(*this, std::move(label));
}

std::vector<std::string> FakeDispatch::mainSubmissions() const {
  std::vector<std::string> found;
  std::ranges::copy_if(submissions_, std::back_inserter(found), [](const std::string& queue) {
    return queue == kMainQueue || queue == kMainOperationQueue;
  });
  return found;
}

std::shared_ptr<platform::DispatchGroup> FakeDispatch::makeGroup() {
  return std::make_shared<Group>(scheduler_);
}

void FakeDispatch::sleep(double seconds) { scheduler_.sleep(seconds); }

std::shared_ptr<void> FakeDispatch::beginActivity(const std::string& reason) {
  activities_->push_back(reason);
  return {nullptr, [activities = activities_, reason](void*) {
            activities->erase(std::ranges::find(*activities, reason));
          }};
}

bool FakeDispatch::isMainThread() const { return scheduler_.isMainThread(); }

}  // namespace karno::test
