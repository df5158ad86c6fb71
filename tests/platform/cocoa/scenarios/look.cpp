#include "look.h"

#include <fmt/format.h>
#include <objc/runtime.h>

#include <algorithm>
#include <set>

#include "../../support/message_check.h"
#include "platform/cocoa/runtime/strings.h"
#include "scenario.h"

namespace karno::test {
namespace {

namespace objc = platform::objc;
using objc::Id;

constexpr double kButtonWidthMin = 82;
constexpr double kTextInset = 2;
constexpr double kRounding = 0.5;

// Messages that only tests send, past the check that the launcher's table has them.
template <class R = Id, class... Args>
R ask(Id receiver, const char* selector, Args... arguments) {
  const objc::Sel message = sel_registerName(selector);
  const auto function =
      platform::trial::uncheckedFunction(receiver, message, objc::detail::isReturnedInMemory<R>());
  const auto method = reinterpret_cast<R (*)(Id, objc::Sel, Args...)>(function);
  return method(receiver, message, arguments...);
}

Id application() { return reinterpret_cast<Id>(objc_getClass("NSApplication")); }
Id allWindows() { return ask(ask(application(), "sharedApplication"), "windows"); }

std::vector<Id> elements(Id array) {
  std::vector<Id> found;
  for (objc::UInteger i = 0; i < ask<objc::UInteger>(array, "count"); ++i) {
    found.push_back(ask(array, "objectAtIndex:", i));
  }
  return found;
}

std::string textOf(Id view, const std::string& className) {
  if (className == "NSButton") return objc::text(ask(view, "title"));
  if (className == "NSTextField") return objc::text(ask(view, "stringValue"));
  return "";
}

bool isPicture(const SeenView& view) { return view.className == "NSImageView"; }

SeenView seen(Id view) {
  const std::string className = object_getClassName(view);
  return {.className = className,
          .text = textOf(view, className),
          .frame = ask<objc::Rect>(view, "frame"),
          .view = objc::Object::retaining(view)};
}

SeenWindow seenWindow(Id window) {
  const Id content = ask(window, "contentView");
  SeenWindow result{.title = objc::text(ask(window, "title")),
                    .contentSize = ask<objc::Rect>(content, "frame").size,
                    .views = {}};
  for (const Id view : elements(ask(content, "subviews"))) result.views.push_back(seen(view));
  return result;
}

SeenWindow theWindow() {
  const auto windows = visibleWindows();
  return windows.size() == 1 ? windows.front() : SeenWindow{};
}

bool isOutside(const objc::Rect& frame, const objc::Size& content) {
  return frame.origin.x < 0 || frame.origin.y < 0 || frame.origin.x + frame.size.width > content.width ||
         frame.origin.y + frame.size.height > content.height;
}

bool overlap(const objc::Rect& a, const objc::Rect& b) {
  return a.origin.x + kRounding < b.origin.x + b.size.width &&
         b.origin.x + kRounding < a.origin.x + a.size.width &&
         a.origin.y + kRounding < b.origin.y + b.size.height &&
         b.origin.y + kRounding < a.origin.y + a.size.height;
}

bool isCut(const SeenView& label) {
  const objc::Size room{label.frame.size.width - 2 * kTextInset, 100000};
  const auto needed = ask<objc::Rect>(ask(label.view.get(), "attributedStringValue"),
                                      "boundingRectWithSize:options:", room, objc::UInteger{3});
  return needed.size.height > label.frame.size.height + kRounding ||
         needed.size.width > room.width + kRounding;
}

double titleWidth(const SeenView& button) {
  return ask<objc::Size>(ask(button.view.get(), "cell"), "cellSize").width;
}

std::string complaintsAbout(const SeenView& view, const objc::Size& content) {
  std::string found;
  if (isOutside(view.frame, content)) found += fmt::format("outside: {} {}\n", view.className, view.text);
  if (view.className == "NSTextField" && !view.text.empty() && isCut(view)) {
    found += fmt::format("cut: {}\n", view.text);
  }
  if (view.className == "NSButton" && titleWidth(view) > view.frame.size.width) {
    found += fmt::format("too narrow: {}\n", view.text);
  }
  if (view.className == "NSButton" && view.frame.size.width < kButtonWidthMin) {
    found += fmt::format("hard to hit: {}\n", view.text);
  }
  return found;
}

// With the mouse held for a moment, as a person holds it.
std::string clickCommand(double x, double y) {
  return fmt::format(
      "xdotool mousemove --window $(xdotool getactivewindow) {:.0f} {:.0f} && xdotool mousedown 1 && sleep "
      "0.2 && "
      "xdotool mouseup 1",
      x, y);
}

}  // namespace

std::vector<SeenWindow> visibleWindows() {
  const objc::AutoreleasePool pool;
  std::vector<SeenWindow> found;
  for (const Id window : elements(allWindows())) {
    if (ask<objc::Boolean>(window, "isVisible") != 0) found.push_back(seenWindow(window));
  }
  return found;
}

std::size_t windowCount() {
  const objc::AutoreleasePool pool;
  return elements(allWindows()).size();
}

std::string textsOnScreen() {
  std::string texts;
  for (const SeenView& view : theWindow().views) {
    if (!view.text.empty()) texts += view.text + "\n";
  }
  return texts;
}

std::string barOnScreen() {
  const objc::AutoreleasePool pool;
  for (const SeenView& view : theWindow().views) {
    if (view.className == "NSProgressIndicator") {
      const Id bar = view.view.get();
      return fmt::format("{} to {}, at {}", ask<double>(bar, "minValue"), ask<double>(bar, "maxValue"),
                         ask<double>(bar, "doubleValue"));
    }
  }
  return "no bar";
}

std::size_t picturesOnScreen() {
  const objc::AutoreleasePool pool;
  return static_cast<std::size_t>(std::ranges::count_if(theWindow().views, isPicture));
}

std::string fontsOf(const std::string& text, bool isBold) {
  const objc::AutoreleasePool pool;
  const objc::Object sentence = objc::string(text);
  const objc::Object key = objc::string("NSFont");
  const Id allocated = ask(reinterpret_cast<Id>(objc_getClass("NSMutableAttributedString")), "alloc");
  const objc::Object drawn = objc::Object::adopting(ask(allocated, "initWithString:", sentence.get()));
  const objc::Range all{0, ask<objc::UInteger>(sentence.get(), "length")};
  const Id fonts = reinterpret_cast<Id>(objc_getClass("NSFont"));
  const Id font = ask(fonts, isBold ? "boldSystemFontOfSize:" : "systemFontOfSize:", 13.0);
  ask<void>(drawn.get(), "addAttribute:value:range:", key.get(), font, all);
  ask<void>(drawn.get(), "fixFontAttributeInRange:", all);

  int missing = 0;
  std::set<objc::UInteger> weights;
  const Id manager = ask(reinterpret_cast<Id>(objc_getClass("NSFontManager")), "sharedFontManager");
  for (objc::UInteger at = 0; at < all.length; ++at) {
    objc::Range run;
    const Id used = ask(drawn.get(), "attribute:atIndex:effectiveRange:", key.get(), at, &run);
    const auto unit = ask<char16_t>(sentence.get(), "characterAtIndex:", at);
    if (!ask<objc::Boolean>(ask(used, "coveredCharacterSet"), "characterIsMember:", unit)) ++missing;
    weights.insert(ask<objc::UInteger>(manager, "traitsOfFont:", used) & 2U);
  }
  return missing == 0 ? fmt::format("all letters, {} weight", weights.size())
                      : fmt::format("{} missing, {} weight", missing, weights.size());
}

std::string textsOfMenu(const objc::Object& bar) {
  const objc::AutoreleasePool pool;
  std::string texts;
  for (const Id entry : elements(ask(bar.get(), "itemArray"))) {
    texts += objc::text(ask(entry, "title")) + "\n";
    for (const Id item : elements(ask(ask(entry, "submenu"), "itemArray"))) {
      texts +=
          fmt::format("  {}, {}, {}\n", objc::text(ask(item, "title")),
                      sel_getName(ask<objc::Sel>(item, "action")), objc::text(ask(item, "keyEquivalent")));
    }
  }
  return texts;
}

std::string complaints() {
  const objc::AutoreleasePool pool;
  const SeenWindow window = theWindow();
  std::string found = window.views.empty() ? "no window\n" : "";
  for (std::size_t i = 0; i < window.views.size(); ++i) {
    found += complaintsAbout(window.views[i], window.contentSize);
    for (std::size_t j = 0; j < i; ++j) {
      const bool areBothPictures =
          isPicture(window.views[i]) && isPicture(window.views[j]);  // a sign on an icon
      if (!areBothPictures && overlap(window.views[i].frame, window.views[j].frame)) {
        found += fmt::format("on top of another: {} / {}\n", window.views[i].text, window.views[j].text);
      }
    }
  }
  return found.empty() ? "nothing" : found;
}

void clickWhenActive(std::string_view title) {
  const SeenWindow window = theWindow();
  for (const SeenView& view : window.views) {
    if (view.className == "NSButton" && view.text == title) {
      const double x = view.frame.origin.x + view.frame.size.width / 2;
      const double y = window.contentSize.height - view.frame.origin.y - view.frame.size.height / 2;
      runWhenActive(clickCommand(x, y));
    }
  }
}

// Drawing takes its time on a busy machine; a window that stays black is told as black.
void sayColourAndEnd() {
  runWhenActive(
      "for attempt in 1 2 3 4 5 6 7 8 9 10; do sleep 0.5; "
      "colour=$(import -window $(xdotool getactivewindow) png:- | "
      "convert - -gravity SouthWest -crop 1x1+6+6 -depth 8 -format '%[hex:p{0,0}]' info:); "
      "[ \"$colour\" = 000000 ] || break; done; echo \"$colour\"; kill -TERM $PPID");
}

}  // namespace karno::test
