#pragma once
#include <sdbus-c++/IConnection.h>

#include <memory>
#include <mutex>

#include "platform/distributed_notifications.h"

namespace karno::platform {

// Posts on a connection of its own, made by the first post. Any thread; posts of one process go out one after
// another.
class BusPoster {
 public:
  // Returns when the bus has the whole message in its socket, which a process that ends right away cannot
  // take back. False when there is no bus, when it takes nothing for 5 seconds, and when D-Bus cannot carry
  // the content.
  bool post(const DistributedNotification& notification);

 private:
  void send(const DistributedNotification& notification,
            const std::map<std::string, sdbus::Variant>& userInfo);
  void flush();

  std::mutex mutex_;
  std::unique_ptr<sdbus::IConnection> connection_;
  bool hasReportedFailure_ = false;
};

}  // namespace karno::platform
