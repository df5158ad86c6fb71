#include <fmt/format.h>
#include <signal.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <cstdlib>
#include <sstream>
#include <thread>
#include <utility>

#include "../platform/cocoa/scenarios/scenario.h"
#include "../platform/support/message_check.h"

// A Mac's hands for the scenarios: System Events presses the keys. What a hand cannot do here is asked of no
// Mac, see left_out.
namespace karno::test {
namespace {

// Nobody tells when a window takes keys.
constexpr std::chrono::seconds kUntilActive{2};

constexpr std::array<std::pair<std::string_view, int>, 2> kKeyCodes{{{"Return", 36}, {"Escape", 53}}};

int codeOf(std::string_view key) {
  for (const auto& [name, code] : kKeyCodes) {
    if (name == key) return code;
  }
  return -1;
}

std::string pressing(std::string_view key) {
  return fmt::format(
      "osascript -e 'tell application \"System Events\"' -e 'set frontmost of (first process whose unix id "
      "is "
      "{}) to true' -e 'key code {}' -e 'end tell' >/dev/null 2>&1",
      ::getpid(), codeOf(key));
}

void onceActive(std::function<void()> action) {
  std::thread([action = std::move(action)] {
    std::this_thread::sleep_for(kUntilActive);
    action();
  }).detach();
}

}  // namespace

void laterWhenActive(std::function<void()> block) {
  onceActive([block = std::move(block)] { platform::host().dispatch.mainEvents().async(block); });
}

void runWhenActive(const std::string& command) {
  onceActive([command] { static_cast<void>(std::system(command.c_str())); });
}

void pressWhenActive(const std::string& keys) {
  std::string commands;
  std::istringstream names(keys);
  for (std::string name; names >> name;) commands += pressing(name) + "; ";
  runWhenActive(commands + "true");
}

void closeWhenActive() { say("nobody closes windows here"); }

void pressUntil(const std::string& key, std::function<bool()> isDone) {
  onceActive([command = pressing(key), isDone = std::move(isDone)] {
    while (!isDone()) {
      static_cast<void>(std::system(command.c_str()));
      for (int look = 0; look < 30 && !isDone(); ++look) {
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
      }
    }
  });
}

void signalWhenActive(int number) {
  onceActive([number] { ::kill(::getpid(), number); });
}

void runScenarioOfThisSystem(std::string_view name) { say(fmt::format("a Mac has no scenario {}", name)); }

}  // namespace karno::test

// The self-check asks a Mac for the messages of the table.
void karno::platform::trial::watchMessages(std::function<void(const std::string& missingRow)>) {}

karno::platform::objc::detail::Function karno::platform::trial::uncheckedFunction(objc::Id receiver,
                                                                                  objc::Sel selector,
                                                                                  bool returnsInMemory) {
  return objc::detail::messageFunction(receiver, selector, returnsInMemory);
}
