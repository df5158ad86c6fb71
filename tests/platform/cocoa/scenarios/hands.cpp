#include <signal.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <thread>

#include "scenario.h"

namespace karno::test {
namespace {

// The display is the scenario's own, so whatever window is active is one of its windows.
bool isActive() { return std::system("xdotool getactivewindow >/dev/null 2>&1") == 0; }

// Gives up after ten seconds, so that a scenario whose window never comes ends by the test's limit with an
// output that tells.
void onceActive(std::function<void()> action) {
  std::thread([action = std::move(action)] {
    for (int attempt = 0; attempt < 100 && !isActive(); ++attempt) {
      std::this_thread::sleep_for(std::chrono::milliseconds(100));
    }
    // The window manager says so a little before the window takes keys.
    std::this_thread::sleep_for(std::chrono::milliseconds(300));
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

void pressWhenActive(const std::string& keys) { runWhenActive("xdotool key --delay 100 " + keys); }

void closeWhenActive() {
  runWhenActive("xdotool key shift getactivewindow windowmove --sync --relative 10 10 key alt+F4");
}

void pressUntil(const std::string& key, std::function<bool()> isDone) {
  onceActive([command = "xdotool key " + key, isDone = std::move(isDone)] {
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

}  // namespace karno::test
