#pragma once
#include <functional>
#include <memory>
#include <string>

// The launcher's own windows and the controls in them that it fills. Main thread only. Texts are UTF-8.
namespace karno::platform {

// Text that a user can read and copy.
class TextLabel {
 public:
  virtual ~TextLabel() = default;
  virtual void setStringValue(const std::string& text) = 0;
  virtual std::string stringValue() const = 0;
};

class PushButton {
 public:
  virtual ~PushButton() = default;
  virtual void setTitle(const std::string& title) = 0;
  virtual std::string title() const = 0;

  // What a press calls, in place of what was set before. It may close the window.
  virtual void setAction(std::function<void()> action) = 0;
};

// A bar that shows how far something is.
class ProgressIndicator {
 public:
  virtual ~ProgressIndicator() = default;
  virtual void setMinValue(double value) = 0;
  virtual void setMaxValue(double value) = 0;
  virtual void setDoubleValue(double value) = 0;
  virtual double doubleValue() const = 0;
  virtual void stopAnimation() = 0;
};

// The window that asks the user to go on to the macFUSE web site. Return presses the continue button, Escape
// the cancel button.
class PromptWindow {
 public:
  virtual ~PromptWindow() = default;

  virtual TextLabel& fuseMessage() = 0;      // the main message
  virtual TextLabel& continueMessage() = 0;  // what "continue" does
  virtual PushButton& cancelButton() = 0;
  virtual PushButton& continueButton() = 0;

  // Makes it the key window, in front of the application's others, sized for its texts.
  virtual void makeKeyAndOrderFront() = 0;

  // Calls the handler whenever this window is about to close, once for every observation added.
  virtual void addWillCloseObserver(std::function<void()> handler) = 0;

  // Removes every observation of this window. Allowed from inside a handler.
  virtual void removeWillCloseObservers() = 0;

  // Closes the window, whether or not it was ever shown; the observers hear of it first.
  virtual void close() = 0;
};

// A small window with a message, a bar and a cancel button, which Escape presses. Made hidden.
class ProgressWindow {
 public:
  virtual ~ProgressWindow() = default;

  virtual void setTitle(const std::string& title) = 0;
  virtual TextLabel& textField() = 0;
  virtual ProgressIndicator& progressIndicator() = 0;
  virtual PushButton& cancelButton() = 0;

  virtual void show() = 0;
  virtual void close() = 0;
};

class Windows {
 public:
  virtual ~Windows() = default;

  // Always the same window. The native window behind it is made when it is first needed on screen.
  virtual PromptWindow& promptWindow() = 0;

  virtual std::unique_ptr<ProgressWindow> makeProgressWindow() = 0;
};

}  // namespace karno::platform
