#include "fake_distributed_notifications.h"

#include <algorithm>

namespace karno::test {

void FakeDistributedNotifications::addObserver(const void* observer, const std::string& name,
                                               const std::string& object, Handler handler) {
  observers_.push_back({observer, name, object, std::move(handler), nextNumber_++});
}

void FakeDistributedNotifications::removeObserver(const void* observer) {
  std::erase_if(observers_, [&](const Observer& each) { return each.observer == observer; });
}

bool FakeDistributedNotifications::post(const platform::DistributedNotification& notification) {
  if (!isReachable) return false;
  ++postCount_;
  scheduler_.addToMain(MainLane::Events,
                       [this, notification, end = nextNumber_] { deliver(notification, end); });
  return true;
}

// To observers with smaller numbers. A handler may remove some; those do not hear of the notification any
// more.
void FakeDistributedNotifications::deliver(const platform::DistributedNotification& notification,
                                           std::size_t end) {
  const std::vector<Observer> before = observers_;
  for (const Observer& each : before) {
    const bool stillThere = std::any_of(observers_.begin(), observers_.end(),
                                        [&](const Observer& other) { return other.number == each.number; });
    if (stillThere && each.number < end && each.name == notification.name &&
        each.object == notification.object) {
      each.handler(notification);
    }
  }
}

}  // namespace karno::test
