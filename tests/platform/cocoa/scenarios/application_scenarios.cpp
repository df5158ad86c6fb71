#include <fmt/format.h>
#include <signal.h>
#include <unistd.h>

#include <chrono>
#include <stdexcept>
#include <thread>

#include "look.h"
#include "platform/cocoa/runtime/objc.h"
#include "platform/cocoa/runtime/threads.h"
#include "platform/cocoa/windows/main_menu.h"
#include "scenario.h"

namespace karno::test {
namespace {

void testThreads() {
  say(fmt::format("main thread: {}", platform::cocoa::isMainThread()));
  std::thread([] {
    const platform::cocoa::ThreadPoolScope scope;
    say(fmt::format("other thread: {}", platform::cocoa::isMainThread()));
    later([] {
      say(fmt::format("main queue: {}", platform::cocoa::isMainThread()));
      terminate();
    });
  }).detach();
}

// The main thread serves nothing any more.
void signalWhileStuck() {
  ::kill(::getpid(), SIGTERM);
  std::this_thread::sleep_for(std::chrono::seconds(50));
}

void signalTwiceWhileStuck() {
  ::kill(::getpid(), SIGTERM);
  ::kill(::getpid(), SIGHUP);
  std::this_thread::sleep_for(std::chrono::seconds(50));
}

void signalAndEnd(int number) {
  ::kill(::getpid(), number);
  later([] {
    say("still here");
    terminate();
  });
}

// Texts that say which table they are from.
class TableNamingBundle final : public platform::Bundle {
 public:
  std::string bundlePath() const override { return ""; }
  std::optional<std::string> executablePath() const override { return {}; }
  std::optional<std::string> executableURL() const override { return {}; }
  std::optional<std::string> bundleIdentifier() const override { return {}; }
  std::optional<platform::Value> objectForInfoDictionaryKey(std::string_view) const override { return {}; }
  std::optional<std::string> pathForResource(std::string_view, std::string_view,
                                             std::string_view) const override {
    return {};
  }
  std::string localisedString(std::string_view key, std::string_view table) const override {
    return fmt::format("{} ({})", key, table);
  }
};

void showMenu() {
  const platform::objc::Object bar = platform::cocoa::makeMainMenu(TableNamingBundle());
  say(textsOfMenu(bar));
  say(fmt::format("{} windows to see", visibleWindows().size()));
  terminate();
}

}  // namespace

void runApplicationScenario(std::string_view name) {
  if (name == "terminate") {
    terminate();
  } else if (name == "terminate-later") {
    later([] { terminate(); });
  } else if (name == "signal") {
    ::kill(::getpid(), SIGTERM);
  } else if (name == "signal-to-thread") {
    std::thread([] { ::raise(SIGTERM); }).detach();
  } else if (name == "signal-interrupt") {
    ::kill(::getpid(), SIGINT);
  } else if (name == "signal-hang-up") {
    ::kill(::getpid(), SIGHUP);
  } else if (name == "signal-ignored") {
    signalAndEnd(SIGINT);
  } else if (name == "signal-while-stuck") {
    signalWhileStuck();
  } else if (name == "signal-twice") {
    signalTwiceWhileStuck();
  } else if (name == "throw") {
    later([] { terminate(); });
    throw std::runtime_error("cannot launch");
  } else if (name == "threads") {
    testThreads();
  } else if (name == "activate") {
    platform::host().application.activateIgnoringOtherApps();
    terminate();
  } else if (name == "menu") {
    showMenu();
  } else if (name == "select-file") {
    platform::host().workspace.selectFile("/etc/hostname", "");
    say("asked");
    terminate();
  } else {
    runScenarioOfThisSystem(name);
  }
}

}  // namespace karno::test
