#pragma once
#include <vector>

#include "fake_scheduler.h"
#include "platform/distributed_notifications.h"

namespace karno::test {

// A notification centre of this machine's own. What is posted is delivered on the main thread, in the order
// posted, to those who observed when it was posted and still do.
class FakeDistributedNotifications final : public platform::DistributedNotifications {
 public:
  explicit FakeDistributedNotifications(FakeScheduler& scheduler) : scheduler_(scheduler) {}

  void addObserver(const void* observer, const std::string& name, const std::string& object,
                   Handler handler) override;
  void removeObserver(const void* observer) override;
  bool post(const platform::DistributedNotification& notification) override;

  std::size_t observerCount() const { return observers_.size(); }

  bool isReachable = true;  // else nothing can be posted

  // How many notifications anybody has posted.
  std::size_t postCount() const { return postCount_; }

 private:
  struct Observer {
    const void* observer;
    std::string name;
    std::string object;
    Handler handler;
    std::size_t number;
  };

  void deliver(const platform::DistributedNotification& notification, std::size_t end);

  FakeScheduler& scheduler_;
  std::vector<Observer> observers_;
  std::size_t nextNumber_ = 0;
  std::size_t postCount_ = 0;
};

}  // namespace karno::test
