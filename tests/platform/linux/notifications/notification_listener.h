#pragma once
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "platform/linux/notifications/distributed_notifications.h"

namespace karno::test {

inline constexpr const char* kName = "it.vantul.test.Name";
inline constexpr const char* kObject = "it.vantul.test.Object";

inline platform::DistributedNotification notification(const std::string& name,
                                                      std::optional<std::string> object,
                                                      platform::Value::Dictionary userInfo = {}) {
  return {.name = name, .object = std::move(object), .userInfo = std::move(userInfo)};
}

// Everything that one observer is told, in order.
class Listener {
 public:
  Listener(platform::BusNotifications& centre, const std::string& name, const std::string& object)
      : centre_(centre) {
    observe(name, object);
  }
  Listener(const Listener&) = delete;
  Listener& operator=(const Listener&) = delete;
  ~Listener() { centre_.removeObserver(this); }

  void observe(const std::string& name, const std::string& object) {
    centre_.addObserver(this, name, object,
                        [this](const platform::DistributedNotification& heard) { heard_.push_back(heard); });
  }

  const std::vector<platform::DistributedNotification>& heard() const { return heard_; }
  std::vector<std::string> messages() const {
    std::vector<std::string> messages;
    for (const auto& heard : heard_) messages.push_back(heard.userInfo.at("message").description());
    return messages;
  }

 private:
  platform::BusNotifications& centre_;
  std::vector<platform::DistributedNotification> heard_;
};

}  // namespace karno::test
