#include "platform/linux/notifications/bus_connection.h"

#include <sdbus-c++/sdbus-c++.h>
#include <sys/socket.h>

namespace karno::platform {

void abandon(std::unique_ptr<sdbus::IConnection>& connection) {
  if (connection == nullptr) return;
  try {
    ::shutdown(connection->getEventLoopPollData().fd, SHUT_RDWR);
  } catch (const sdbus::Error&) {
    // The connection has lost its socket already.
  }
  connection.reset();
}

}  // namespace karno::platform
