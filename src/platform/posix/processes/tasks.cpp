#include "platform/posix/processes/tasks.h"

#include <atomic>
#include <cerrno>
#include <future>
#include <memory>
#include <optional>
#include <system_error>
#include <utility>

#include "platform/cocoa/runtime/run_block.h"
#include "platform/posix/processes/child_registry.h"
#include "platform/posix/processes/running_children.h"
#include "platform/posix/processes/spawn.h"
#include "platform/posix/processes/thread_start.h"

namespace karno::platform {
namespace {

std::atomic<int> runningChildren{0};

// One child's place among kRunningChildrenMax.
class Place {
 public:
  static std::shared_ptr<Place> take() {
    auto place = std::make_shared<Place>();
    return place->number_ <= kRunningChildrenMax ? place : nullptr;
  }

  Place() : number_(runningChildren.fetch_add(1) + 1) {}
  Place(const Place&) = delete;
  Place& operator=(const Place&) = delete;
  ~Place() { runningChildren.fetch_sub(1); }

 private:
  int number_;
};

// The life of one child's thread. The thread starts the child itself, so that a child never exists without
// the thread that waits for it.
class Supervision {
 public:
  Supervision(TaskLaunch task, Tasks::TerminationHandler onTermination, std::shared_ptr<Place> place)
      : task_(std::move(task)), onTermination_(std::move(onTermination)), place_(std::move(place)) {}

  std::future<Result<std::int32_t>> started() { return started_.get_future(); }

  void run() {
    Result<std::int32_t> child = spawn(task_);
    const bool isRunning = static_cast<bool>(child);
    const std::int32_t processIdentifier = isRunning ? child.value() : 0;
    std::optional<RunningChildren::Entry> listed;
    if (isRunning) {
      ChildRegistry::instance().beginWatching(processIdentifier);
      listed.emplace(processIdentifier, task_.executablePath);
    }
    started_.set_value(std::move(child));
    if (!isRunning) return;

    const std::optional<int> status = ChildRegistry::instance().watchToEnd(processIdentifier);
    place_.reset();
    if (!onTermination_) return;
    const TaskEnd end = status ? endFromWaitStatus(*status) : TaskEnd{.terminationStatus = kUnknownStatus};
    runBlock([&] { onTermination_(end); }, "Tasks");
  }

 private:
  TaskLaunch task_;
  Tasks::TerminationHandler onTermination_;
  std::shared_ptr<Place> place_;
  std::promise<Result<std::int32_t>> started_;
};

}  // namespace

Result<std::int32_t> PosixTasks::launch(const TaskLaunch& task, TerminationHandler onTermination) {
  std::shared_ptr<Place> place = Place::take();
  if (place == nullptr) return Error::posix(EAGAIN);

  const auto supervision = std::make_shared<Supervision>(task, std::move(onTermination), std::move(place));
  std::future<Result<std::int32_t>> started = supervision->started();
  try {
    startThreadOfNormalPriority([supervision] { supervision->run(); });
  } catch (const std::system_error& failure) {
    return Error::posix(failure.code().value());
  }
  return started.get();
}

}  // namespace karno::platform
