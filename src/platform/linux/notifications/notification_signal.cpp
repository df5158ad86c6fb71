#include "platform/linux/notifications/notification_signal.h"

#include <fmt/format.h>
#include <sdbus-c++/sdbus-c++.h>

#include <utility>

#include "platform/linux/notifications/bus_values.h"

namespace karno::platform {
namespace {

// The bus and its client library disagree on how to quote an apostrophe and a backslash.
std::string argumentRule(int index, const std::string& text) {
  if (text.find_first_of("'\\") != std::string::npos) return {};
  return fmt::format(",arg{}='{}'", index, text);
}

}  // namespace

std::optional<DistributedNotification> notificationFromMessage(sdbus::Message& message) {
  try {
    std::string name;
    std::string object;
    BusDictionary userInfo;
    message >> name >> object >> userInfo;

    DistributedNotification notification = {
        .name = std::move(name), .object = std::nullopt, .userInfo = valuesFromBusDictionary(userInfo)};
    if (!object.empty()) notification.object = std::move(object);
    return notification;
  } catch (const sdbus::Error&) {
    return std::nullopt;
  }
}

std::string matchRule(const std::string& name, const std::string& object) {
  return fmt::format("type='signal',path='{}',interface='{}',member='{}'", kNotificationPath,
                     kNotificationInterface, kNotificationMember) +
         argumentRule(0, name) + argumentRule(1, object);
}

}  // namespace karno::platform
