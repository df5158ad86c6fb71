#include "platform/linux/gnustep/theme.h"

#include <algorithm>

#include "platform/cocoa/runtime/strings.h"
#include "platform/linux/gnustep/method_replacement.h"

namespace karno::platform::cocoa {
namespace {

using objc::Id;
using objc::Rect;
using objc::Sel;
using objc::send;

struct Colour {
  double red;
  double green;
  double blue;
};

constexpr Colour kBlue = {0.25, 0.52, 0.91};
constexpr Colour kPaleBlue = {0.83, 0.91, 1.00};
constexpr Colour kPressedBlue = {0.66, 0.80, 0.97};
constexpr Colour kWhite = {1.00, 1.00, 1.00};
constexpr Colour kDisabled = {0.95, 0.95, 0.95};
constexpr Colour kPressed = {0.84, 0.84, 0.84};
constexpr Colour kEdge = {0.72, 0.72, 0.72};
constexpr Colour kTrack = {0.87, 0.87, 0.87};

constexpr double kButtonRadius = 6;
constexpr double kKnobMargin = 3;

// GSThemeControlState
constexpr unsigned kDisabledState = 2;
constexpr unsigned kHighlightedFirstResponderState = 3;
constexpr unsigned kHighlightedState = 4;

// NSScrollerPart, NSScrollArrowPosition
constexpr objc::UInteger kKnob = 2;
constexpr objc::UInteger kNoArrows = 2;

void use(const Colour& colour) {
  constexpr double kOpaque = 1;
  send<void>(send(objc::classNamed("NSColor"), "colorWithCalibratedRed:green:blue:alpha:", colour.red,
                  colour.green, colour.blue, kOpaque),
             "set");
}

Rect insetBy(const Rect& rect, double distance) {
  return {{rect.origin.x + distance, rect.origin.y + distance},
          {std::max(rect.size.width - 2 * distance, 0.0), std::max(rect.size.height - 2 * distance, 0.0)}};
}

Id rounded(const Rect& rect, double radius) {
  return send(objc::classNamed("NSBezierPath"), "bezierPathWithRoundedRect:xRadius:yRadius:", rect, radius,
              radius);
}

void fill(const Rect& rect, double radius, const Colour& colour) {
  use(colour);
  send<void>(rounded(rect, radius), "fill");
}

// A line of one point lies sharp on the screen when its middle is between two.
void outline(const Rect& rect, double radius, const Colour& colour, double width) {
  const Id path = rounded(insetBy(rect, width / 2), radius);
  send<void>(path, "setLineWidth:", width);
  use(colour);
  send<void>(path, "stroke");
}

Colour fillOf(bool isDefault, unsigned state) {
  if (state == kDisabledState) return kDisabled;
  const bool isPressed = state == kHighlightedState || state == kHighlightedFirstResponderState;
  if (isDefault) return isPressed ? kPressedBlue : kPaleBlue;
  return isPressed ? kPressed : kWhite;
}

void drawButton(Id, Sel, Rect frame, Id cell, Id, int, unsigned state) {
  const objc::AutoreleasePool pool;
  const bool isDefault = objc::text(send(cell, "keyEquivalent")) == "\r";
  const Rect place = insetBy(frame, 1);
  fill(place, kButtonRadius, fillOf(isDefault, state));
  outline(place, kButtonRadius, isDefault && state != kDisabledState ? kBlue : kEdge, 1);
}

// Which key presses a button is told by its colour, not by a picture of the key.
void drawNoKey(Id, Sel, Id, Id) {}

// The framework's frame lies inside a button, close to its title; the ring belongs on the button's edge.
void drawFocus(Id, Sel, Rect frame, Id view) {
  const objc::AutoreleasePool pool;
  const bool isButton = objc::isKindOf(view, "NSButton");
  outline(isButton ? insetBy(send<Rect>(view, "bounds"), 1) : frame, kButtonRadius, kBlue, 2);
}

Rect drawTrack(Id, Sel, Rect bounds, Rect) {
  const objc::AutoreleasePool pool;
  fill(bounds, bounds.size.height / 2, kTrack);
  return bounds;
}

void drawBar(Id, Sel, Rect bounds) {
  const objc::AutoreleasePool pool;
  fill(bounds, std::min(bounds.size.height, bounds.size.width) / 2, kBlue);
}

Id (*originalScroller)(Id, Sel, Rect) = nullptr;

Id makeScroller(Id scroller, Sel selector, Rect frame) {
  const Id made = originalScroller(scroller, selector, frame);
  send<void>(made, "setArrowsPosition:", kNoArrows);
  return made;
}

void drawScroller(Id, Sel, Rect, Id scroller, objc::UInteger, objc::Boolean) {
  const objc::AutoreleasePool pool;
  fill(send<Rect>(scroller, "bounds"), 0, kWhite);
  const Rect knob = insetBy(send<Rect>(scroller, "rectForPart:", kKnob), kKnobMargin);
  fill(knob, std::min(knob.size.width, knob.size.height) / 2, kEdge);
}

}  // namespace

void installTheme() {
  static const bool isInstalled = [] {
    const Class theme = objc::classNamed("GSTheme");
    replaceMethod(theme, "drawButton:in:view:style:state:", drawButton);
    replaceMethod(theme, "setKeyEquivalent:forButtonCell:", drawNoKey);
    replaceMethod(theme, "drawFocusFrame:view:", drawFocus);
    replaceMethod(theme, "drawProgressIndicatorBezel:withClip:", drawTrack);
    replaceMethod(theme, "drawProgressIndicatorBarDeterminate:", drawBar);
    replaceMethod(theme, "drawScrollerRect:inView:hitPart:isHorizontal:", drawScroller);
    originalScroller = replaceMethod(objc::classNamed("NSScroller"), "initWithFrame:", makeScroller);
    return true;
  }();
  static_cast<void>(isInstalled);
}

}  // namespace karno::platform::cocoa
