#pragma once
#include <functional>

#include "fake_scheduler.h"
#include "platform/application.h"

namespace karno::test {

// The application object. The machine goes on after terminate(), so that a test sees what would follow.
class FakeApplication final : public platform::Application {
 public:
  explicit FakeApplication(FakeScheduler& scheduler) : scheduler_(scheduler) {}

  void activateIgnoringOtherApps() override {
    scheduler_.requireMainThread("Application::activateIgnoringOtherApps");
    ++activations_;
    if (whenActivated) whenActivated();
  }

  void terminate() override {
    scheduler_.requireMainThread("Application::terminate");
    ++terminations_;
    terminatedAtSeconds_ = scheduler_.secondsSinceStart();
    if (delegate_ != nullptr) delegate_->applicationWillTerminate();
  }

  // Who hears applicationWillTerminate(); not owned.
  void setDelegate(platform::ApplicationDelegate* delegate) { delegate_ = delegate; }

  std::function<void()> whenActivated;  // runs inside every activation

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
