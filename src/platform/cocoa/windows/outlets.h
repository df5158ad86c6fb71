#pragma once
#include <functional>
#include <string>
#include <utility>

#include "platform/windows.h"

// The controls that the core fills, before and after the native ones are made: each keeps what it was given
// and tells its window of every change. Main thread only.
namespace karno::platform::cocoa {

class LabelOutlet final : public TextLabel {
 public:
  explicit LabelOutlet(std::function<void()> changed) : changed_(std::move(changed)) {}

  void setStringValue(const std::string& text) override {
    text_ = text;
    changed_();
  }
  std::string stringValue() const override { return text_; }

 private:
  std::function<void()> changed_;
  std::string text_;
};

class ButtonOutlet final : public PushButton {
 public:
  explicit ButtonOutlet(std::function<void()> changed) : changed_(std::move(changed)) {}

  void setTitle(const std::string& title) override {
    title_ = title;
    changed_();
  }
  std::string title() const override { return title_; }
  void setAction(std::function<void()> action) override { action_ = std::move(action); }

  // What a press of the native button does.
  void press() const {
    // A copy: the action may set another one, or destroy the window.
    const auto action = action_;
    if (action) action();
  }

 private:
  std::function<void()> changed_;
  std::string title_;
  std::function<void()> action_;
};

class ProgressOutlet final : public ProgressIndicator {
 public:
  explicit ProgressOutlet(std::function<void()> changed) : changed_(std::move(changed)) {}

  void setMinValue(double value) override { set(minValue_, value); }
  void setMaxValue(double value) override { set(maxValue_, value); }
  void setDoubleValue(double value) override { set(value_, value); }
  double doubleValue() const override { return value_; }
  void stopAnimation() override { set(isAnimated_, false); }

  double minValue() const { return minValue_; }
  double maxValue() const { return maxValue_; }
  bool isAnimated() const { return isAnimated_; }

 private:
  template <class T>
  void set(T& field, T value) {
    field = value;
    changed_();
  }

  std::function<void()> changed_;
  double minValue_ = 0;
  double maxValue_ = 100;
  double value_ = 0;
  bool isAnimated_ = true;
};

}  // namespace karno::platform::cocoa
