#include <fmt/format.h>

#include <atomic>
#include <cmath>

#include "platform/cocoa/runtime/objc.h"
#include "platform/cocoa/windows/window.h"
#include "platform/never_destroyed.h"
#include "scenario.h"

namespace karno::test {
namespace {

using platform::cocoa::Button;
using platform::cocoa::Label;
using platform::cocoa::TextField;
using platform::cocoa::Window;

// Kept to the end of the process.
Window& window() {
  static platform::NeverDestroyed<Window> made("Karno", 420, 160);
  return made.get();
}

void pressKeys() {
  window().addLabel({.x = 20, .y = 100, .width = 380, .height = 40},
                    "A label that wraps over two lines or so", true);
  window().addButton({.x = 300, .y = 12, .width = 100, .height = 32}, "Weiter", "\r", [] {
    say("clicked Weiter");
    pressWhenActive("Escape");
  });
  window().addButton({.x = 190, .y = 12, .width = 100, .height = 32}, "Abbrechen", "\033", [] {
    say("clicked Abbrechen");
    terminate();
  });
  window().center();
  window().show();
  platform::host().application.activateIgnoringOtherApps();
  pressWhenActive("Return");
}

void useControls() {
  Label label = window().addLabel({.width = 100, .height = 20}, "Größe");
  TextField field = window().addTextField({.y = 30, .width = 100, .height = 24}, "alt");
  Button button =
      window().addButton({.y = 60, .width = 100, .height = 32}, "Los", "", [] { say("clicked"); });
  say(fmt::format("{} {} {} {}", window().title(), label.text(), field.text(), button.title()));

  window().setTitle("Zwei");
  label.setText("zwei");
  field.setText("neu");
  button.setTitle("Halt");
  say(fmt::format("{} {} {} {}", window().title(), label.text(), field.text(), button.title()));

  button.performClick();
  button.setEnabled(false);
  button.performClick();
  terminate();
}

void closeAndReopen() {
  window().setWillClose([] { say(fmt::format("will close, visible {}", window().isVisible())); });
  window().show();
  say(fmt::format("visible {}", window().isVisible()));
  window().close();
  say(fmt::format("visible {}", window().isVisible()));
  window().show();
  window().setWillClose([] {
    say("quit on close");
    terminate();
  });
  window().close();
}

// What GNUstep does when another program has the keyboard for a moment.
void deactivate() {
  static std::atomic<bool> isClicked{false};
  window().addButton({.x = 300, .y = 12, .width = 100, .height = 32}, "Weiter", "\r", [] {
    isClicked = true;
    say("clicked Weiter");
    terminate();
  });
  window().show();
  platform::host().application.activateIgnoringOtherApps();
  laterWhenActive([] {
    using platform::objc::send;
    send<void>(send(platform::objc::classNamed("NSApplication"), "sharedApplication"), "deactivate");
    say("deactivated");
    pressUntil("Return", [] { return isClicked.load(); });
  });
}

void destroy() {
  {
    Window shortLived("short", 100, 100);
    shortLived.setWillClose([] { say("never said"); });
    shortLived.addButton({.width = 50, .height = 20}, "x", "", [] {});
    shortLived.show();
  }
  say("gone");
  terminate();
}

double wholeLinesHeight(int lines, double heightMax) {
  std::string text = "1";
  for (int line = 2; line <= lines; ++line) text += fmt::format("\n{}", line);
  return window().addScrollingText({.width = 300, .height = heightMax}, text).heightOfWholeLines(heightMax);
}

// What is above the first line, and below the last where all fit, is the same at every height.
void countWholeLines() {
  const double line = (wholeLinesHeight(9, 500) - wholeLinesHeight(3, 500)) / 6;
  const double above = wholeLinesHeight(3, 500) - 3 * line - platform::cocoa::kScrollingTextMargin;
  for (const double heightMax : {100.0, 107.0, 114.0}) {
    const double height = wholeLinesHeight(60, heightMax);
    const double lines = (height - above) / line;
    say(fmt::format("{} {} {}", height <= heightMax, height >= heightMax - line - 1,
                    std::abs(lines - std::round(lines)) * line < 1));
  }
  terminate();
}

}  // namespace

void runWindowScenario(std::string_view name) {
  if (name == "keys") {
    pressKeys();
  } else if (name == "controls") {
    useControls();
  } else if (name == "close") {
    closeAndReopen();
  } else if (name == "deactivated") {
    deactivate();
  } else if (name == "whole-lines") {
    countWholeLines();
  } else if (name == "destroyed") {
    destroy();
  }
}

}  // namespace karno::test
