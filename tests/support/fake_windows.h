#pragma once
#include <functional>
#include <vector>

#include "fake_scheduler.h"
#include "platform/windows.h"

namespace karno::test {

// The prompt window without a screen.
class FakePromptWindow final : public platform::PromptWindow {
 public:
  explicit FakePromptWindow(FakeScheduler& scheduler) : scheduler_(scheduler) {}

  void addWillCloseObserver(std::function<void()> handler) override {
    scheduler_.requireMainThread("PromptWindow::addWillCloseObserver");
    observers_.push_back(std::move(handler));
  }

  void removeWillCloseObservers() override {
    scheduler_.requireMainThread("PromptWindow::removeWillCloseObservers");
    observers_.clear();
  }

  void close() override {
    scheduler_.requireMainThread("PromptWindow::close");
    ++closes_;
    const auto observers = observers_;  // a handler may remove them all; then the others do not run
    for (std::size_t i = 0; i < observers.size() && !observers_.empty(); ++i) observers[i]();
  }

  std::size_t observerCount() const { return observers_.size(); }
  int closes() const { return closes_; }

 private:
  FakeScheduler& scheduler_;
  std::vector<std::function<void()>> observers_;
  int closes_ = 0;
};

class FakeWindows final : public platform::Windows {
 public:
  explicit FakeWindows(FakeScheduler& scheduler) : prompt(scheduler), scheduler_(scheduler) {}

  platform::PromptWindow& promptWindow() override {
    scheduler_.requireMainThread("Windows::promptWindow");
    return prompt;
  }

  FakePromptWindow prompt;

 private:
  FakeScheduler& scheduler_;
};

}  // namespace karno::test
