#pragma once
#include <sdbus-c++/IConnection.h>

#include <memory>
#include <mutex>
#include <optional>
#include <string>

#include "platform/distributed_notifications.h"
#include "platform/linux/notifications/bus_values.h"
#include "platform/notices.h"

namespace karno::platform {

// Posts on a connection of its own, made by the first post. Any thread; posts of one process go out one after
// another.
class BusPoster {
 public:
  explicit BusPoster(Notices& notices) : notices_(notices) {}

  // Returns when the bus has the whole message in its socket, which a process that ends right away cannot
  // take back. A connection whose bus has ended is replaced. False when there is no bus, when it takes
  // nothing for 5 seconds, and when D-Bus cannot carry the content; the first time in a row a notice says
  // why.
  bool post(const DistributedNotification& notification);

 private:
  struct Attempt {
    std::optional<std::string> failure;
    bool isNews = false;  // the one before has not failed
  };

  Attempt attemptToPost(const DistributedNotification& notification, const BusDictionary& userInfo);
  void send(const DistributedNotification& notification, const BusDictionary& userInfo);
  void flush();

  Notices& notices_;
  std::mutex mutex_;
  std::unique_ptr<sdbus::IConnection> connection_;
  bool hasReportedFailure_ = false;
};

}  // namespace karno::platform
