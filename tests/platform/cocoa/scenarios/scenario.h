#pragma once
#include <functional>
#include <string>
#include <string_view>

#include "platform/platform.h"

namespace karno::test {

// Writes one line to standard output at once.
void say(std::string_view line);

// A delegate that says what it is told and begins its scenario when the application has launched.
class SayingDelegate final : public platform::ApplicationDelegate {
 public:
  explicit SayingDelegate(std::function<void()> begin) : begin_(std::move(begin)) {}
  void applicationDidFinishLaunching() override;
  void applicationWillTerminate() override;

 private:
  std::function<void()> begin_;
};

// Adds a block to the main queue.
void later(std::function<void()> block);

// Has the block run among the events of the main thread, alert or no alert, once a window of this process is
// the active one.
void laterWhenActive(std::function<void()> block);

// Presses the keys one after the other, named as xdotool does, once a window of this process is the active
// one.
void pressWhenActive(const std::string& keys);

// Closes the window with the window manager's keys, Alt and F4, once a window of this process is the active
// one. The first key of all makes the server announce a keyboard map, upon which the window manager is
// without its keys for a moment. It is done with that when it has moved the window that was to be moved
// afterwards.
void closeWhenActive();

// Presses the key once a window of this process is the active one, and again every three seconds until it is
// done. `isDone` is asked on a thread of its own.
void pressUntil(const std::string& key, std::function<bool()> isDone);

// Runs a shell command once a window of this process is the active one.
void runWhenActive(const std::string& command);

// Sends this process the signal, as another process would, once a window of it is the active one.
void signalWhenActive(int number);

void terminate();

// Each begins when the application has launched.
void runAlertScenario(platform::Alerts& alerts, std::string_view name);
void runQueueScenario(std::string_view name);
void runWindowScenario(std::string_view name);
void runPromptScenario(std::string_view name);
void runProgressScenario(std::string_view name);
void runApplicationScenario(std::string_view name);

// Those that rest on what only this system has.
void runScenarioOfThisSystem(std::string_view name);

}  // namespace karno::test
