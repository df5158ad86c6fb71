#pragma once
#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <vector>

#include "platform/dispatch.h"
#include "platform/distributed_notifications.h"

namespace karno::platform {

// Hands notifications from the listener's thread to their handlers on the main thread, in order and in
// batches. Nothing is dropped: beyond a limit of waiting notifications there is no room, so that the listener
// leaves further ones with the bus, until half of them are delivered.
class NotificationDelivery : public std::enable_shared_from_this<NotificationDelivery> {
 public:
  using Identifier = std::uint64_t;
  using Handler = DistributedNotifications::Handler;

  static constexpr std::size_t kWaitingMax = 16'384;
  static constexpr std::size_t kWaitingBytesMax = std::size_t{32} << 20U;

  // The main queue outlives the process's last block.
  explicit NotificationDelivery(Queue& mainQueue) : mainQueue_(mainQueue) {}

  // Called on the main thread when there is room again. To be set before the first notification.
  void setRoomHandler(std::function<void()> onRoom);

  // No handler starts afterwards, the room handler included. Main thread.
  void close();

  Identifier add(const void* observer, Handler handler);

  // The registrations that this observer had. None of their handlers starts afterwards when called on the
  // main thread.
  std::vector<Identifier> remove(const void* observer);

  void receive(Identifier identifier, DistributedNotification notification);
  bool hasRoom();

 private:
  struct Registration {
    const void* observer;
    std::shared_ptr<const Handler> handler;
  };
  struct Waiting {
    Identifier identifier;
    std::size_t bytes;
    DistributedNotification notification;
  };

  struct Step {
    bool mustSchedule = false;
    bool hasNewRoom = false;
    std::shared_ptr<const Handler> handler;  // null when the registration is gone
    DistributedNotification notification;
  };

  void schedule();
  void deliverBatch();
  bool deliverNext();
  std::optional<Step> takeNext();

  Queue& mainQueue_;
  std::mutex mutex_;
  std::function<void()> onRoom_;
  std::map<Identifier, Registration> registrations_;
  Identifier lastIdentifier_ = 0;
  std::deque<Waiting> waiting_;
  std::size_t waitingBytes_ = 0;
  bool isScheduled_ = false;  // a block on the main queue will look at waiting_
  bool isFull_ = false;
};

}  // namespace karno::platform
