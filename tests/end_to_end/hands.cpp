#include "hands.h"

#include <algorithm>
#include <cmath>
#include <sstream>

#include "embedded_client/client_layout.h"
#include "ipc/wrapper_protocol.h"

namespace karno::test {
namespace {

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

}  // namespace

std::optional<WindowOnScreen> findWindow(const Machine& machine, const std::string& title,
                                         std::chrono::seconds limit) {
  WindowOnScreen window;
  const bool found = machine.waitUntil(
      [&] {
        const auto search = machine.in({"xdotool", "search", "--onlyvisible", "--name", exactPattern(title)});
        std::istringstream(search.output) >> window.identifier;
        return search.status == 0;
      },
      limit);
  if (!found) return std::nullopt;
  const std::string geometry =
      machine.in({"xdotool", "getwindowgeometry", "--shell", window.identifier}).output;
  window.width = valueOf(geometry, "WIDTH");
  window.height = valueOf(geometry, "HEIGHT");
  return window;
}

// A click shorter than a fifth of a second may go unnoticed.
void pressAt(const Machine& machine, const WindowOnScreen& window, int x, int y) {
  machine.in({"xdotool", "mousemove", "--window", window.identifier, std::to_string(x), std::to_string(y),
              "sleep", "0.2", "mousedown", "1", "sleep", "0.2", "mouseup", "1"});
}

void pressMessageButton(const Machine& machine, const WindowOnScreen& window, std::string_view message) {
  const auto place = std::find(kWrapperMessages.begin(), kWrapperMessages.end(), message);
  const auto index = static_cast<std::size_t>(place - kWrapperMessages.begin());
  const client::Rectangle button = client::clientLayout().messageButton(index);
  const double x = button.x + button.width / 2;
  const double y = window.height - (button.y + button.height / 2);
  pressAt(machine, window, static_cast<int>(std::lround(x)), static_cast<int>(std::lround(y)));
}

// The row of buttons at the lower right of an alert of GNUstep gui 0.29, whose texts are short here.
void pressAlertButton(const Machine& machine, const WindowOnScreen& alert, int index) {
  constexpr int kFirstFromRight = 44;
  constexpr int kNextFromRight = 82;
  constexpr int kFromBottom = 20;
  pressAt(machine, alert, alert.width - kFirstFromRight - index * kNextFromRight, alert.height - kFromBottom);
}

void pressKey(const Machine& machine, const WindowOnScreen& window, const std::string& key) {
  machine.in({"xdotool", "windowactivate", "--sync", window.identifier, "key", key});
}

int coloursOf(const Machine& machine, const WindowOnScreen& window) {
  const std::string picture = (machine.root() / "var/run/window.png").string();
  machine.in({"import", "-window", window.identifier, picture});
  return std::atoi(machine.in({"identify", "-format", "%k", picture}).output.c_str());
}

}  // namespace karno::test
