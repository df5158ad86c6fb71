#pragma once
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "fake_scheduler.h"
#include "platform/updater.h"

namespace karno::test {

// The updater and what makes it. A test plays the updater's part through `delegate()`.
class FakeUpdater final : public platform::Updaters {
 public:
  explicit FakeUpdater(FakeScheduler& scheduler) : scheduler_(scheduler) {}

  std::unique_ptr<platform::Updater> makeUpdater(platform::UpdaterDelegate& delegate) override {
    ++made;
    delegate_ = &delegate;
    return std::make_unique<Handle>(*this);
  }

  // Who hears of the session; nobody before the first use of the updater.
  platform::UpdaterDelegate& delegate() { return *delegate_; }
  platform::Updater& handle() { return handle_; }

  int made = 0;
  int checks = 0;
  std::vector<bool> automaticChecks;
  std::vector<std::string> calls;      // what was asked for on the main thread, in its order
  std::vector<std::string> questions;  // after its state, in their order

  std::function<void()> whenChecking;  // runs inside every requested check

  bool inSession = false;
  bool canCheck = true;
  std::optional<platform::Error> startError;

 private:
  class Handle final : public platform::Updater {
   public:
    explicit Handle(FakeUpdater& owner) : owner_(owner) {}

    std::optional<platform::Error> startUpdater() override {
      owner_.note("startUpdater");
      return owner_.startError;
    }
    bool sessionInProgress() const override {
      owner_.questions.emplace_back("sessionInProgress");
      return owner_.inSession;
    }
    bool canCheckForUpdates() const override {
      owner_.questions.emplace_back("canCheckForUpdates");
      return owner_.canCheck;
    }
    void checkForUpdates() override {
      owner_.note("checkForUpdates");
      ++owner_.checks;
      if (owner_.whenChecking) owner_.whenChecking();
    }
    void setAutomaticallyChecksForUpdates(bool automatically) override {
      owner_.automaticChecks.push_back(automatically);
    }
    void clearFeedURLFromUserDefaults() override { owner_.note("clearFeedURLFromUserDefaults"); }

   private:
    FakeUpdater& owner_;
  };

  void note(const std::string& call) {
    scheduler_.requireMainThread("Updater::" + call);
    calls.push_back(call);
  }

  FakeScheduler& scheduler_;
  platform::UpdaterDelegate* delegate_ = nullptr;
  Handle handle_{*this};
};

}  // namespace karno::test
