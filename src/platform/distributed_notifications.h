#pragma once
#include <functional>
#include <optional>
#include <string>

#include "platform/value.h"

namespace karno::platform {

struct DistributedNotification {
  std::string name;
  std::optional<std::string> object;
  Value::Dictionary userInfo;
};

// The system-wide notification centre: what one process of the user posts, every other one can observe.
// The content is untrusted. Delivery keeps the order of each sender.
class DistributedNotifications {
 public:
  using Handler = std::function<void(const DistributedNotification&)>;

  virtual ~DistributedNotifications() = default;

  // Calls the handler on the main thread for every notification with exactly this name and object that is
  // posted from now on, also while the launcher is not the active application. `observer` only identifies the
  // registration. Adding the same one twice registers it twice.
  virtual void addObserver(const void* observer, const std::string& name, const std::string& object,
                           Handler handler) = 0;

  // Removes all registrations of this observer. No handler of it starts afterwards when called on the main
  // thread.
  virtual void removeObserver(const void* observer) = 0;

  // Posts and returns once the notification is on its way; any thread. An error when it could not be handed
  // over.
  virtual bool post(const DistributedNotification& notification) = 0;
};

}  // namespace karno::platform
