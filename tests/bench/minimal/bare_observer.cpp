// The least program that hears a notification: reads the session bus and writes a line for each. Says
// "listening" when it does.
#include <sdbus-c++/sdbus-c++.h>
#include <unistd.h>

#include <memory>
#include <string>

#include "ipc/wrapper_protocol.h"
#include "platform/linux/notification_signal.h"

namespace {

void say(std::string line) {
  line += '\n';
  if (write(STDERR_FILENO, line.data(), line.size()) < 0) _exit(74);
}

void tell(sdbus::Message& message) {
  const auto notification = karno::platform::notificationFromMessage(message);
  if (!notification) return;
  const auto text = notification->userInfo.find(karno::kWrapperMessageKey);
  if (text != notification->userInfo.end()) say("Received '" + text->second.description() + "'");
}

}  // namespace

int main() {
  const std::unique_ptr<sdbus::IConnection> bus = sdbus::createSessionBusConnection();
  const std::string rule = karno::platform::matchRule(std::string(karno::kWrapperNotificationName),
                                                      std::string(karno::kWrapperNotificationObject));
  const sdbus::Slot slot = bus->addMatch(rule, tell);
  say("listening");
  bus->enterEventLoop();
}
