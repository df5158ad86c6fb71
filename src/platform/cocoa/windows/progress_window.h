#pragma once
#include <memory>
#include <string>

#include "platform/cocoa/windows/outlets.h"
#include "platform/cocoa/windows/window.h"

namespace karno::platform::cocoa {

// The native window is made when it is first shown.
class CocoaProgressWindow final : public ProgressWindow {
 public:
  CocoaProgressWindow();
  ~CocoaProgressWindow() override;

  void setTitle(const std::string& title) override;
  TextLabel& textField() override { return textField_; }
  ProgressIndicator& progressIndicator() override { return progressIndicator_; }
  PushButton& cancelButton() override { return cancelButton_; }

  void show() override;
  void close() override;

 private:
  struct Native;

  void layOut();
  void moveBar();

  std::string title_;
  LabelOutlet textField_{[this] { layOut(); }};
  ProgressOutlet progressIndicator_{[this] { moveBar(); }};
  ButtonOutlet cancelButton_{[this] { layOut(); }};
  std::unique_ptr<Native> native_;
};

}  // namespace karno::platform::cocoa
