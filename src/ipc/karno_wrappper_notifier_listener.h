#pragma once
#include <optional>
#include <string>

#include "platform/distributed_notifications.h"

namespace karno {

// Listens to what the embedded application posts and acts on it. Only listens; never posts. The class name's
// three letters p are part of the interface. Handlers run on the main thread.
class KarnoWrappperNotifierListener {
 public:
  static KarnoWrappperNotifierListener& manager();

  // Nothing guards against a second start(): every notification would then be handled twice.
  void start() { registerForNotifications(); }
  void stop() { unregisterForNotifications(); }

  void registerForNotifications();
  void unregisterForNotifications();
  void receivedNotification(const platform::DistributedNotification& notification);

  // Logs the reason and, later on the main operation queue, asks the user whether to start the embedded
  // application again.
  void processAbnormalTermination(const std::optional<platform::Value>& reason);
};

}  // namespace karno
