#pragma once
#include <fmt/format.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "fake_scheduler.h"
#include "platform/windows.h"

namespace karno::test {

class FakeTextLabel final : public platform::TextLabel {
 public:
  explicit FakeTextLabel(FakeScheduler& scheduler) : scheduler_(scheduler) {}
  void setStringValue(const std::string& text) override {
    scheduler_.requireMainThread("TextLabel::setStringValue");
    text_ = text;
  }
  std::string stringValue() const override { return text_; }

 private:
  FakeScheduler& scheduler_;
  std::string text_;
};

class FakePushButton final : public platform::PushButton {
 public:
  explicit FakePushButton(FakeScheduler& scheduler) : scheduler_(scheduler) {}
  void setTitle(const std::string& title) override {
    scheduler_.requireMainThread("PushButton::setTitle");
    title_ = title;
  }
  std::string title() const override { return title_; }
  void setAction(std::function<void()> action) override {
    scheduler_.requireMainThread("PushButton::setAction");
    action_ = std::move(action);
  }

  // What a user's press does. Main thread only.
  void press() {
    scheduler_.requireMainThread("a press of a button");
    if (const auto action = action_) action();
  }

 private:
  FakeScheduler& scheduler_;
  std::string title_;
  std::function<void()> action_;
};

class FakeProgressIndicator final : public platform::ProgressIndicator {
 public:
  // Notes each call there.
  FakeProgressIndicator(FakeScheduler& scheduler, std::vector<std::string>& calls)
      : scheduler_(scheduler), calls_(calls) {}
  void setMinValue(double value) override { note("min", value); }
  void setMaxValue(double value) override { note("max", value); }
  void setDoubleValue(double value) override {
    note("value", value);
    value_ = value;
  }
  double doubleValue() const override { return value_; }
  void stopAnimation() override {
    scheduler_.requireMainThread("ProgressIndicator::stopAnimation");
    calls_.emplace_back("stop");
  }

 private:
  void note(const char* property, double value) {
    scheduler_.requireMainThread("ProgressIndicator");
    calls_.push_back(fmt::format("{} {}", property, value));
  }

  FakeScheduler& scheduler_;
  std::vector<std::string>& calls_;
  double value_ = -1;
};

// The prompt window without a screen.
class FakePromptWindow final : public platform::PromptWindow {
 public:
  explicit FakePromptWindow(FakeScheduler& scheduler) : scheduler_(scheduler) {}

  FakeTextLabel& fuseMessage() override { return fuseMessage_; }
  FakeTextLabel& continueMessage() override { return continueMessage_; }
  FakePushButton& cancelButton() override { return cancelButton_; }
  FakePushButton& continueButton() override { return continueButton_; }

  void makeKeyAndOrderFront() override {
    scheduler_.requireMainThread("PromptWindow::makeKeyAndOrderFront");
    isInFront_ = true;
    ++timesShown_;
    if (whenShown) whenShown();
  }

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
    isInFront_ = false;
    const auto observers = observers_;  // a handler may remove them all; then the others do not run
    for (std::size_t i = 0; i < observers.size() && !observers_.empty(); ++i) observers[i]();
  }

  std::size_t observerCount() const { return observers_.size(); }
  int closes() const { return closes_; }
  bool isInFront() const { return isInFront_; }
  int timesShown() const { return timesShown_; }

  std::function<void()> whenShown;  // runs whenever it is brought to the front

 private:
  FakeScheduler& scheduler_;
  FakeTextLabel fuseMessage_{scheduler_};
  FakeTextLabel continueMessage_{scheduler_};
  FakePushButton cancelButton_{scheduler_};
  FakePushButton continueButton_{scheduler_};
  std::vector<std::function<void()>> observers_;
  int closes_ = 0;
  bool isInFront_ = false;
  int timesShown_ = 0;
};

// What became of a progress window; outlives the window itself.
struct FakeProgressState {
  explicit FakeProgressState(FakeScheduler& scheduler)
      : textField(scheduler), progressIndicator(scheduler, calls), cancelButton(scheduler) {}
  std::vector<std::string> calls;    // of the window and its bar: "show", "close", "min 0", "stop"
  std::function<void()> whenClosed;  // runs inside every close
  FakeTextLabel textField;
  FakeProgressIndicator progressIndicator;
  FakePushButton cancelButton;
  std::string title;
};

class FakeProgressWindow final : public platform::ProgressWindow {
 public:
  FakeProgressWindow(FakeScheduler& scheduler, std::shared_ptr<FakeProgressState> state)
      : scheduler_(scheduler), state_(std::move(state)) {}

  void setTitle(const std::string& title) override {
    scheduler_.requireMainThread("ProgressWindow::setTitle");
    state_->title = title;
  }
  FakeTextLabel& textField() override { return state_->textField; }
  FakeProgressIndicator& progressIndicator() override { return state_->progressIndicator; }
  FakePushButton& cancelButton() override { return state_->cancelButton; }
  void show() override { note("show"); }
  void close() override {
    note("close");
    if (state_->whenClosed) state_->whenClosed();
  }

 private:
  void note(const char* call) {
    scheduler_.requireMainThread(call);
    state_->calls.emplace_back(call);
  }

  FakeScheduler& scheduler_;
  std::shared_ptr<FakeProgressState> state_;
};

class FakeWindows final : public platform::Windows {
 public:
  explicit FakeWindows(FakeScheduler& scheduler) : prompt(scheduler), scheduler_(scheduler) {}

  platform::PromptWindow& promptWindow() override {
    scheduler_.requireMainThread("Windows::promptWindow");
    return prompt;
  }

  std::unique_ptr<platform::ProgressWindow> makeProgressWindow() override {
    scheduler_.requireMainThread("Windows::makeProgressWindow");
    progress.push_back(std::make_shared<FakeProgressState>(scheduler_));
    return std::make_unique<FakeProgressWindow>(scheduler_, progress.back());
  }

  FakePromptWindow prompt;
  std::vector<std::shared_ptr<FakeProgressState>> progress;  // every one that was made

 private:
  FakeScheduler& scheduler_;
};

}  // namespace karno::test
