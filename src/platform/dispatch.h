#pragma once
#include <cstdint>
#include <functional>
#include <memory>
#include <string>

namespace karno::platform {

using Block = std::function<void()>;

// Runs blocks later, in the order given when it is serial. Any thread may add. A block must not throw;
// what it throws all the same is caught and written to the console log.
class Queue {
 public:
  virtual ~Queue() = default;
  virtual void async(Block block) = 0;
};

// Counts work that somebody waits for. Safe from any thread. Each leave() belongs to an enter() before it.
class DispatchGroup {
 public:
  virtual ~DispatchGroup() = default;
  virtual void enter() = 0;
  virtual void leave() = 0;

  // Waits until as many have left as have entered, at most that long; a time of zero or less only looks.
  // False when the time ran out first.
  virtual bool wait(std::int64_t nanoseconds) = 0;
};

enum class QueuePriority { Default, Background };

// Queues, waiting and the main-thread test. Safe from any thread.
class Dispatch {
 public:
  virtual ~Dispatch() = default;

  // The dispatch queue and the operation queue of the main thread. A block of theirs that shows an alert
  // holds up every other block of both until the alert is answered.
  virtual Queue& mainQueue() = 0;
  virtual Queue& mainOperationQueue() = 0;

  // What goes on on the main thread while an alert is up, as timers and notifications do. For the platform's
  // own work.
  virtual Queue& mainEvents() = 0;

  // Concurrent queues shared by the whole process. A block may occupy its thread for as long as it likes.
  virtual Queue& globalQueue(QueuePriority priority) = 0;

  // A new serial queue. It lives until its last block has run, also when the caller lets go of it earlier.
  virtual std::shared_ptr<Queue> makeSerialQueue(std::string label) = 0;

  // A new, empty group.
  virtual std::shared_ptr<DispatchGroup> makeGroup() = 0;

  // Suspends the calling thread.
  virtual void sleep(double seconds) = 0;

  // For whoever waits and counts the time: as long as the answer lives, the system does not put this process
  // to rest, which stretches the sleeps of an application without a window. Null where no system does that.
  virtual std::shared_ptr<void> beginActivity(const std::string& /*reason*/) { return nullptr; }

  virtual bool isMainThread() const = 0;
};

}  // namespace karno::platform
