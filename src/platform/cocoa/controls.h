#pragma once
#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "platform/cocoa/objc.h"

// Windows and controls built in code. Main thread only, after the application object was made. Positions and
// sizes are in points; y counts upwards from the window's lower edge. Texts are UTF-8.
namespace karno::platform::cocoa {

struct Frame {
  double x = 0;
  double y = 0;
  double width = 0;
  double height = 0;
};

// Wrapped text that a user can read and, if selectable, copy. A copy means the same label.
class Label {
 public:
  void setText(std::string_view text);
  std::string text() const;

 private:
  friend class Window;
  explicit Label(objc::Object field) : field_(std::move(field)) {}
  objc::Object field_;
};

// One line of text that a user can edit. A copy means the same field.
class TextField {
 public:
  void setText(std::string_view text);
  std::string text() const;

 private:
  friend class Window;
  explicit TextField(objc::Object field) : field_(std::move(field)) {}
  objc::Object field_;
};

// A push button. A copy means the same button.
class Button {
 public:
  void setTitle(std::string_view title);
  std::string title() const;
  void setEnabled(bool enabled);
  void performClick();

 private:
  friend class Window;
  explicit Button(objc::Object button) : button_(std::move(button)) {}
  objc::Object button_;
};

// A titled window with a close button, made hidden. Its end takes the native window off the screen without
// telling the will-close handler, and no callback of its buttons runs afterwards.
class Window {
 public:
  struct Options {
    bool resizable = false;
    bool miniaturizable = true;
  };

  Window(std::string_view title, double width, double height, Options options);
  Window(std::string_view title, double width, double height) : Window(title, width, height, Options()) {}
  ~Window();
  Window(const Window&) = delete;
  Window& operator=(const Window&) = delete;

  void setTitle(std::string_view title);
  std::string title() const;
  void center();

  // Makes it key and brings it to the front of the application's windows.
  void show();

  // Closes it, whether or not it was ever shown; the handler hears of it first. It can be shown again.
  void close();
  bool isVisible() const;

  // Called whenever the window is about to close, by close() or by the user; an empty one calls nothing.
  // To quit when it closes, let the handler call platform::host().application.terminate().
  void setWillClose(std::function<void()> handler);

  Label addLabel(const Frame& frame, std::string_view text, bool selectable = false);
  TextField addTextField(const Frame& frame, std::string_view text);

  // `keyEquivalent`: "\r" for Return, "\033" for Escape, empty for none. The callback may close the window,
  // but not destroy it. What it throws is caught and written to the console log.
  Button addButton(const Frame& frame, std::string_view title, std::string_view keyEquivalent,
                   std::function<void()> onClick);

 private:
  struct State;
  std::unique_ptr<State> state_;
};

}  // namespace karno::platform::cocoa
