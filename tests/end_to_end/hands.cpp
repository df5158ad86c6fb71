#include "hands.h"

#include <algorithm>
#include <cmath>
#include <sstream>

#include "embedded_client/client_layout.h"
#include "ipc/wrapper_protocol.h"

namespace karno::test {
namespace {

constexpr const char* kClientTitle = "Karno.app";

// The value of a line such as "WIDTH=578".
int valueOf(const std::string& text, const std::string& key) {
  const std::size_t place = text.find(key + "=");
  return place == std::string::npos ? 0 : std::atoi(text.c_str() + place + key.size() + 1);
}

// The title as a pattern that matches nothing else.
std::string exactPattern(const std::string& title) {
  std::string pattern = "^";
  for (const char letter : title) {
    if (std::string_view(".()[]").find(letter) != std::string_view::npos) pattern += '\\';
    pattern += letter;
  }
  return pattern + "$";
}

bool isVisible(const Machine& machine, const WindowOnScreen& window) {
  std::istringstream identifiers(machine.in({"xdotool", "search", "--onlyvisible", "--name", ""}).output);
  for (std::string identifier; identifiers >> identifier;) {
    if (identifier == window.identifier) return true;
  }
  return false;
}

// Whether keys go to that window, and went there already a moment ago: a window that appears takes the
// keyboard, and its program hears of that a little later.
bool keepsFocus(const Machine& machine, const WindowOnScreen& window) {
  const std::string wanted = window.identifier + "\n";
  const CommandResult looks =
      machine.in({"sh", "-c", "xdotool getwindowfocus; sleep 0.3; xdotool getwindowfocus"});
  return looks.output == wanted + wanted;
}

void focus(const Machine& machine, const WindowOnScreen& window) {
  const auto isFocused = [&] {
    if (keepsFocus(machine, window)) return true;
    machine.in({"xdotool", "windowactivate", window.identifier});
    return keepsFocus(machine, window);
  };
  machine.waitUntil(isFocused, std::chrono::seconds(30));
}

// A click shorter than a fifth of a second may go unnoticed.
void pressAt(const Machine& machine, const WindowOnScreen& window, int x, int y) {
  focus(machine, window);
  machine.in({"xdotool", "mousemove", "--window", window.identifier, std::to_string(x), std::to_string(y),
              "sleep", "0.2", "mousedown", "1", "sleep", "0.2", "mouseup", "1"});
}

}  // namespace

std::optional<WindowOnScreen> findWindow(const Machine& machine, const std::string& title,
                                         std::chrono::seconds limit) {
  return findNextWindow(machine, title, WindowOnScreen{}, limit);
}

std::optional<WindowOnScreen> findNextWindow(const Machine& machine, const std::string& title,
                                             const WindowOnScreen& before, std::chrono::seconds limit) {
  WindowOnScreen window;
  const bool found = machine.waitUntil(
      [&] {
        const auto search = machine.in({"xdotool", "search", "--onlyvisible", "--name", exactPattern(title)});
        std::istringstream identifiers(search.output);
        while (identifiers >> window.identifier) {
          if (search.status == 0 && window.identifier != before.identifier) return true;
        }
        return false;
      },
      limit);
  if (!found) return std::nullopt;
  const std::string geometry =
      machine.in({"xdotool", "getwindowgeometry", "--shell", window.identifier}).output;
  window.width = valueOf(geometry, "WIDTH");
  window.height = valueOf(geometry, "HEIGHT");
  return window;
}

void waitForClientWindow(const Machine& machine) { findWindow(machine, kClientTitle); }

void closeAt(const Machine& machine, const WindowOnScreen& window, int x, int y) {
  pressAt(machine, window, x, y);
  machine.waitUntil([&] { return !isVisible(machine, window); }, std::chrono::seconds(30));
}

void pressMessageButton(const Machine& machine, const WindowOnScreen& window, std::string_view message) {
  const auto place = std::find(kWrapperMessages.begin(), kWrapperMessages.end(), message);
  const auto index = static_cast<std::size_t>(place - kWrapperMessages.begin());
  const client::Rectangle button = client::clientLayout().messageButton(index);
  const double x = button.x + button.width / 2;
  const double y = window.height - (button.y + button.height / 2);
  pressAt(machine, window, static_cast<int>(std::lround(x)), static_cast<int>(std::lround(y)));
}

// The buttons stand at the lower right, the first one outermost; a short title leaves them at their least
// width.
void pressAlertButton(const Machine& machine, const WindowOnScreen& alert, int index) {
  constexpr int kMargin = 20;
  constexpr int kWidth = 82;
  constexpr int kGap = 10;
  constexpr int kHalfHeight = 14;
  const int fromRight = kMargin + kWidth / 2 + index * (kWidth + kGap);
  closeAt(machine, alert, alert.width - fromRight, alert.height - kMargin - kHalfHeight);
}

void pressKey(const Machine& machine, const WindowOnScreen& window, const std::string& key) {
  focus(machine, window);
  machine.in({"xdotool", "key", key});
}

void closeByKeys(const Machine& machine, const WindowOnScreen& window) {
  focus(machine, window);
  machine.in({"xdotool", "key", "shift", "windowmove", "--sync", "--relative", window.identifier, "10", "10",
              "key", "alt+F4"});
}

int coloursOf(const Machine& machine, const WindowOnScreen& window) {
  const std::string picture = (machine.root() / "var/run/window.png").string();
  machine.in({"import", "-window", window.identifier, picture});
  return std::atoi(machine.in({"identify", "-format", "%k", picture}).output.c_str());
}

}  // namespace karno::test
