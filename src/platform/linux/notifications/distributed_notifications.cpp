#include "platform/linux/notifications/distributed_notifications.h"

#include <utility>

namespace karno::platform {

BusNotifications::BusNotifications(Queue& mainQueue, Notices& notices, const BusListener::Waits& waits)
    : delivery_(std::make_shared<NotificationDelivery>(mainQueue)),
      listener_({.receive =
                     [delivery = delivery_](BusListener::Identifier identifier,
                                            DistributedNotification notification) {
                       delivery->receive(identifier, std::move(notification));
                     },
                 .hasRoom = [delivery = delivery_] { return delivery->hasRoom(); }},
                notices, waits),
      poster_(notices) {
  delivery_->setRoomHandler([this] { listener_.lookAgain(); });
}

// Blocks on the main queue may hold the delivery for longer.
BusNotifications::~BusNotifications() { delivery_->close(); }

void BusNotifications::addObserver(const void* observer, const std::string& name, const std::string& object,
                                   Handler handler) {
  const NotificationDelivery::Identifier identifier = delivery_->add(observer, std::move(handler));
  listener_.observe(identifier, name, object);
}

void BusNotifications::removeObserver(const void* observer) {
  for (const NotificationDelivery::Identifier identifier : delivery_->remove(observer))
    listener_.forget(identifier);
}

bool BusNotifications::post(const DistributedNotification& notification) {
  return poster_.post(notification);
}

}  // namespace karno::platform
