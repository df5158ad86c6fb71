#include "platform/cocoa/windows/controls.h"

#include <algorithm>
#include <cmath>

#include "platform/cocoa/runtime/strings.h"

namespace karno::platform::cocoa {
namespace {

using objc::send;

// A text field keeps this much room on either side of its text; known of NSTextFieldCell, not documented.
constexpr double kTextInset = 2;
constexpr double kTallestText = 100000;
constexpr objc::UInteger kUsesLineFragmentOrigin = 1;
constexpr objc::UInteger kUsesFontLeading = 2;

void setStringValue(const objc::Object& control, std::string_view text) {
  send<void>(control, "setStringValue:", objc::string(text));
}

std::string stringValue(const objc::Object& control) {
  const objc::AutoreleasePool pool;
  return objc::text(send(control, "stringValue"));
}

}  // namespace

void Control::setFrame(const Frame& frame) {
  send<void>(view_, "setFrame:", objc::Rect{{frame.x, frame.y}, {frame.width, frame.height}});
}

void Control::setAccessibilityLabel(std::string_view text) {
  if (!objc::respondsTo(view_, "setAccessibilityLabel:")) return;
  send<void>(view_, "setAccessibilityLabel:", objc::string(text));
}

void Label::setText(std::string_view text) { setStringValue(view(), text); }
std::string Label::text() const { return stringValue(view()); }

// The text takes the width of what is inside the frame.
void ScrollingText::setText(std::string_view text) {
  const objc::AutoreleasePool pool;
  const auto room = send<objc::Size>(view(), "contentSize");
  send<void>(textView_, "setFrame:", objc::Rect{{0, 0}, room});
  send<void>(textView_, "setString:", objc::string(text));
  send<void>(textView_, "sizeToFit");
}

std::string ScrollingText::text() const {
  const objc::AutoreleasePool pool;
  return objc::text(send(textView_, "string"));
}

double ScrollingText::heightOfWholeLines(double heightMax) const {
  const objc::AutoreleasePool pool;
  const double borders =
      send<objc::Rect>(view(), "frame").size.height - send<objc::Size>(view(), "contentSize").height;
  const objc::Id lines = send(textView_, "layoutManager");
  const objc::Id container = send(textView_, "textContainer");
  const double all = send<objc::Rect>(lines, "usedRectForTextContainer:", container).size.height +
                     2 * kScrollingTextMargin + borders;
  if (all <= heightMax) return std::ceil(all);

  // The first line that does not fit begins where the frame ends.
  const double around = kScrollingTextMargin + borders;
  const objc::Point end{0, heightMax - around};
  const auto cut = send<objc::UInteger>(lines, "glyphIndexForPoint:inTextContainer:", end, container);
  objc::Range* const wholeLine = nullptr;
  const auto line =
      send<objc::Rect>(lines, "lineFragmentRectForGlyphAtIndex:effectiveRange:", cut, wholeLine);
  return std::floor(line.origin.y + around);
}

double Label::heightForWidth(double width) const {
  const objc::AutoreleasePool pool;
  const objc::Size room{std::max(width - 2 * kTextInset, 1.0), kTallestText};
  const auto text =
      send<objc::Rect>(send(view(), "attributedStringValue"), "boundingRectWithSize:options:", room,
                       kUsesLineFragmentOrigin | kUsesFontLeading);
  const auto line = send<objc::Size>(send(view(), "cell"), "cellSize");
  return std::ceil(std::max(text.size.height, line.height));
}

void TextField::setText(std::string_view text) { setStringValue(view(), text); }
std::string TextField::text() const { return stringValue(view()); }

void Button::setTitle(std::string_view title) { send<void>(view(), "setTitle:", objc::string(title)); }

std::string Button::title() const {
  const objc::AutoreleasePool pool;
  return objc::text(send(view(), "title"));
}

void Button::setEnabled(bool enabled) { send<void>(view(), "setEnabled:", enabled); }
void Button::performClick() { send<void>(view(), "performClick:", nullptr); }

double Button::fittingWidth() const {
  const objc::AutoreleasePool pool;
  constexpr double kRoomBesideTitle = 8;
  return std::ceil(send<objc::Size>(send(view(), "cell"), "cellSize").width) + 2 * kRoomBesideTitle;
}

void ProgressBar::setRange(double lowest, double highest) {
  send<void>(view(), "setMinValue:", lowest);
  send<void>(view(), "setMaxValue:", highest);
}

void ProgressBar::setValue(double value) { send<void>(view(), "setDoubleValue:", value); }
void ProgressBar::stopAnimation() { send<void>(view(), "stopAnimation:", nullptr); }

}  // namespace karno::platform::cocoa
