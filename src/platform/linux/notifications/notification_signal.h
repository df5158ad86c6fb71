#pragma once
#include <sdbus-c++/Message.h>

#include <optional>
#include <string>

#include "platform/distributed_notifications.h"

// A distributed notification as a D-Bus signal: name, object ("" when there is none) and user information,
// with the signature s s a{sv}.
namespace karno::platform {

inline constexpr const char* kNotificationPath = "/it/vantul/DistributedNotificationCenter";
inline constexpr const char* kNotificationInterface = "it.vantul.DistributedNotificationCenter";
inline constexpr const char* kNotificationMember = "Posted";

// Absent when the message has another form.
std::optional<DistributedNotification> notificationFromMessage(sdbus::Message& message);

// The rule that lets the bus send us only notifications of this name and object. A text that cannot stand in
// a rule is left to the comparison on our side.
std::string matchRule(const std::string& name, const std::string& object);

}  // namespace karno::platform
