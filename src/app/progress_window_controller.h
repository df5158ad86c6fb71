#pragma once
#include <cstdint>
#include <memory>
#include <string>

#include "platform/windows.h"

namespace karno {

class ProgressWindowController;

class ProgressWindowDelegate {
 public:
  virtual ~ProgressWindowDelegate() = default;

  // Comes on the main thread.
  virtual void progressWindowControllerUserPressedCancel(ProgressWindowController& controller) = 0;
};

// A small window with a message, a bar from 0 to 100 and a cancel button, for long steps of the start-up.
// Main thread only.
class ProgressWindowController : public std::enable_shared_from_this<ProgressWindowController> {
 public:
  static std::shared_ptr<ProgressWindowController> make();

  // Shows the window with the bar at 0. The stored progress stays as it is.
  void showWindow();
  void close();

  // What the cancel button does. Without a delegate, nothing.
  void cancelButtonClicked();

  const std::string& title() const { return title_; }
  void setTitle(std::string title);

  const std::string& message() const { return message_; }
  void setMessage(std::string message);

  // In percent.
  std::int64_t progress() const { return progress_; }
  void setProgress(std::int64_t progress);

  // Held weakly.
  std::shared_ptr<ProgressWindowDelegate> delegate() const { return delegate_.lock(); }
  void setDelegate(std::weak_ptr<ProgressWindowDelegate> delegate) { delegate_ = std::move(delegate); }

  platform::TextLabel& textField() const { return window_->textField(); }
  platform::ProgressIndicator& progressIndicator() const { return window_->progressIndicator(); }
  platform::PushButton& cancelButton() const { return window_->cancelButton(); }

 private:
  explicit ProgressWindowController(std::unique_ptr<platform::ProgressWindow> window)
      : window_(std::move(window)) {}

  const std::unique_ptr<platform::ProgressWindow> window_;
  std::string title_;
  std::string message_;
  std::int64_t progress_ = 0;
  std::weak_ptr<ProgressWindowDelegate> delegate_;
};

}  // namespace karno
