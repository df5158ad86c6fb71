#pragma once
#include <memory>

#include "platform/dispatch.h"
#include "platform/distributed_notifications.h"
#include "platform/linux/notifications/bus_listener.h"
#include "platform/linux/notifications/bus_poster.h"
#include "platform/linux/notifications/notification_delivery.h"

namespace karno::platform {

// Distributed notifications over the D-Bus session bus. Nothing connects before the first use; observing and
// posting have a connection each, and a new one when the bus has ended and is there again. A burst is read
// off the bus at once and waits here, bounded, and then in the bus daemon, whose own limit for one receiver
// is the only place where a notification can be lost. Destroyed, if ever, on the main thread.
class BusNotifications final : public DistributedNotifications {
 public:
  BusNotifications(Queue& mainQueue, Notices& notices, const BusListener::Waits& waits = {});
  ~BusNotifications() override;
  BusNotifications(const BusNotifications&) = delete;
  BusNotifications& operator=(const BusNotifications&) = delete;

  void addObserver(const void* observer, const std::string& name, const std::string& object,
                   Handler handler) override;
  void removeObserver(const void* observer) override;
  bool post(const DistributedNotification& notification) override;

 private:
  const std::shared_ptr<NotificationDelivery> delivery_;
  BusListener listener_;
  BusPoster poster_;
};

}  // namespace karno::platform
