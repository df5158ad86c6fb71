#pragma once
#include <memory>
#include <mutex>
#include <vector>

#include "platform/cocoa/runtime/callback.h"
#include "platform/distributed_notifications.h"

namespace karno::platform {

// NSDistributedNotificationCenter. Observers are added on the main thread, which is where they are called;
// removing and posting is allowed anywhere.
class FoundationDistributedNotifications final : public DistributedNotifications {
 public:
  FoundationDistributedNotifications() = default;
  ~FoundationDistributedNotifications() override;
  FoundationDistributedNotifications(const FoundationDistributedNotifications&) = delete;
  FoundationDistributedNotifications& operator=(const FoundationDistributedNotifications&) = delete;

  void addObserver(const void* observer, const std::string& name, const std::string& object,
                   Handler handler) override;
  void removeObserver(const void* observer) override;
  bool post(const DistributedNotification& notification) override;

 private:
  struct Registration {
    const void* observer = nullptr;
    std::shared_ptr<const Handler> handler;  // null once removed
    std::unique_ptr<cocoa::Callback> callback;
  };

  void deliver(const Registration& registration, objc::Id notification);
  void destroyRemoved();

  std::mutex mutex_;
  // Removed ones stay until the main thread is outside every handler: one of them may be running.
  std::vector<std::unique_ptr<Registration>> registrations_;
  int handlersRunning_ = 0;  // main thread only
};

}  // namespace karno::platform
