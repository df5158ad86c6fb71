#pragma once
#include <chrono>
#include <optional>
#include <string>
#include <string_view>

#include "machine.h"

namespace karno::test {

// A person in front of a machine's screen: sees windows, presses buttons and keys.

struct WindowOnScreen {
  std::string identifier;
  int width = 0;
  int height = 0;
};

// The title of the launcher's own windows and alerts.
inline constexpr const char* kLauncherTitle = "Karno";

// The visible window with exactly that title; absent when none appears within the limit.
std::optional<WindowOnScreen> findWindow(const Machine& machine, const std::string& title,
                                         std::chrono::seconds limit = std::chrono::seconds(30));

// The same for another window than the one before, which may be about to go.
std::optional<WindowOnScreen> findNextWindow(const Machine& machine, const std::string& title,
                                             const WindowOnScreen& before,
                                             std::chrono::seconds limit = std::chrono::seconds(30));

// Waits for the window of the File Provider build, which takes the keyboard when it appears, so that nothing takes it
// from a window that comes afterwards.
void waitForClientWindow(const Machine& machine);

// All that press first make sure that the window has the keyboard and that the program behind it has had the time to
// learn of it, and press once.

// Presses the mouse at a place counted from the window's upper left corner, and waits for the window to go.
void closeAt(const Machine& machine, const WindowOnScreen& window, int x, int y);

// Presses the button of that message in the client's window.
void pressMessageButton(const Machine& machine, const WindowOnScreen& window, std::string_view message);

// Presses a button of a modal alert; 0 is the first and outermost one.
void pressAlertButton(const Machine& machine, const WindowOnScreen& alert, int index);

// Presses a key, such as "Return", in that window.
void pressKey(const Machine& machine, const WindowOnScreen& window, const std::string& key);

// Closes the window with the window manager's keys, Alt and F4. The first key of all makes the server
// announce a keyboard map, upon which the window manager is without its keys for a moment. It is done with
// that when it has moved the window that was to be moved afterwards.
void closeByKeys(const Machine& machine, const WindowOnScreen& window);

// How many different colours a picture of the window has: a window that drew nothing has one or two.
int coloursOf(const Machine& machine, const WindowOnScreen& window);

}  // namespace karno::test
