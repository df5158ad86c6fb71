#pragma once
#include <functional>
#include <vector>

#include "fake_scheduler.h"
#include "platform/application.h"

namespace karno::test {

// The application object. The machine goes on after terminate(), so that a test sees what would follow.
class FakeApplication final : public platform::Application {
 public:
  explicit FakeApplication(FakeScheduler& scheduler) : scheduler_(scheduler) {}

  bool isActive() const override {
    scheduler_.requireMainThread("Application::isActive");
    return active;
  }

  void activateIgnoringOtherApps() override {
    scheduler_.requireMainThread("Application::activateIgnoringOtherApps");
    ++activations_;
    if (whenActivated) whenActivated();
  }

  void setActivationPolicy(platform::ActivationPolicy policy) override {
    scheduler_.requireMainThread("Application::setActivationPolicy");
    policies.push_back(policy);
  }

  void requestUserAttention(platform::AttentionRequest request) override {
    scheduler_.requireMainThread("Application::requestUserAttention");
    attentionRequests.push_back(request);
  }

  void terminate() override {
    scheduler_.requireMainThread("Application::terminate");
    ++terminations_;
    terminatedAtSeconds_ = scheduler_.secondsSinceStart();
    if (delegate_ != nullptr) delegate_->applicationWillTerminate();
  }

  // Who hears applicationWillTerminate(); not owned.
  void setDelegate(platform::ApplicationDelegate* delegate) { delegate_ = delegate; }

  bool active = true;
  std::vector<platform::ActivationPolicy> policies;           // in the order set
  std::vector<platform::AttentionRequest> attentionRequests;  // in the order made
  std::function<void()> whenActivated;                        // runs inside every activation

  int activations() const { return activations_; }
  int terminations() const { return terminations_; }
  double terminatedAtSeconds() const { return terminatedAtSeconds_; }  // of virtual time, the last one

 private:
  FakeScheduler& scheduler_;
  platform::ApplicationDelegate* delegate_ = nullptr;
  int activations_ = 0;
  int terminations_ = 0;
  double terminatedAtSeconds_ = -1;
};

}  // namespace karno::test
