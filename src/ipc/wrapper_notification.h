#pragma once
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "ipc/wrapper_protocol.h"
#include "platform/distributed_notifications.h"

namespace karno {

// The notification by which the embedded application, or a tool in its place, tells the launcher a message.
inline platform::DistributedNotification wrapperNotification(std::string_view message,
                                                             const std::optional<std::string>& reason) {
  platform::Value::Dictionary userInfo{{std::string(kWrapperMessageKey), std::string(message)}};
  if (reason) userInfo.emplace(kWrapperReasonKey, *reason);
  return {std::string(kWrapperNotificationName), std::string(kWrapperNotificationObject),
          std::move(userInfo)};
}

}  // namespace karno
