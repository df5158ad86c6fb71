#pragma once
#include <string>
#include <string_view>
#include <utility>

#include "platform/cocoa/runtime/objc.h"

// The controls of a window, which makes them, see window.h. Main thread only, after the application object
// was made. Positions and sizes are in points; y counts upwards from the window's lower edge. Texts are
// UTF-8.
namespace karno::platform::cocoa {

struct Frame {
  double x = 0;
  double y = 0;
  double width = 0;
  double height = 0;
};

enum class TextStyle {
  Plain,     // the system's font in its usual size
  Headline,  // the same in bold
  Small,     // a little smaller than usual
};

// Something with a place in a window. A copy means the same control.
class Control {
 public:
  void setFrame(const Frame& frame);

  // What is said of it to a user who does not see it, where it has no text of its own.
  void setAccessibilityLabel(std::string_view text);

 protected:
  explicit Control(objc::Object view) : view_(std::move(view)) {}
  const objc::Object& view() const { return view_; }

 private:
  friend class Window;
  objc::Object view_;
};

// Wrapped text that a user can read and, if selectable, copy.
class Label : public Control {
 public:
  void setText(std::string_view text);
  std::string text() const;

  // How high a frame of that width must be to show the whole text; one line at least.
  double heightForWidth(double width) const;

 private:
  friend class Window;
  using Control::Control;
};

// Text of any length in a frame of its own that scrolls. A user can read and copy it.
class ScrollingText : public Control {
 public:
  void setText(std::string_view text);
  std::string text() const;

  // How high a frame of the width of now must be to show as many whole lines as that height has room for.
  double heightOfWholeLines(double heightMax) const;

 private:
  friend class Window;
  ScrollingText(objc::Object scrollView, objc::Object textView)
      : Control(std::move(scrollView)), textView_(std::move(textView)) {}

  objc::Object textView_;
};

// One line of text that a user can edit.
class TextField : public Control {
 public:
  void setText(std::string_view text);
  std::string text() const;

 private:
  friend class Window;
  using Control::Control;
};

// A push button.
class Button : public Control {
 public:
  void setTitle(std::string_view title);
  std::string title() const;
  void setEnabled(bool enabled);
  void performClick();

  // How wide a frame must be to show the whole title with the usual room beside it.
  double fittingWidth() const;

 private:
  friend class Window;
  using Control::Control;
};

// A bar that shows how far something is.
class ProgressBar : public Control {
 public:
  void setRange(double lowest, double highest);
  void setValue(double value);
  void stopAnimation();

 private:
  friend class Window;
  using Control::Control;
};

// Between a scrolling text and its border, in points.
inline constexpr double kScrollingTextMargin = 6;

// The picture of the application.
class Icon : public Control {
 private:
  friend class Window;
  using Control::Control;
};

}  // namespace karno::platform::cocoa
