#include <fmt/format.h>
#include <signal.h>
#include <unistd.h>

#include <chrono>
#include <fstream>
#include <stdexcept>
#include <string>
#include <thread>

#include "look.h"
#include "platform/cocoa/runtime/objc.h"
#include "platform/cocoa/runtime/threads.h"
#include "platform/cocoa/windows/main_menu.h"
#include "platform/linux/gnustep/method_replacement.h"
#include "scenario.h"

namespace karno::test {
namespace {

// How often this process's main thread has gone to sleep and been woken so far.
long mainThreadSleeps() {
  std::ifstream status(fmt::format("/proc/self/task/{}/status", ::getpid()));
  const std::string key = "voluntary_ctxt_switches:";
  for (std::string line; std::getline(status, line);) {
    if (line.starts_with(key)) {
      return std::stol(line.substr(key.size()));
    }
  }
  throw std::runtime_error("the kernel does not count");
}

void countSleepsWhileIdle() {
  std::thread([] {
    std::this_thread::sleep_for(std::chrono::seconds(1));
    const long before = mainThreadSleeps();
    std::this_thread::sleep_for(std::chrono::seconds(5));
    say(fmt::format("woken {} times in 5 s", mainThreadSleeps() - before));
    later([] { terminate(); });
  }).detach();
}

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

void (*originalTerminate)(platform::objc::Id, platform::objc::Sel, platform::objc::Id) = nullptr;

void terminateAsOnAMac(platform::objc::Id self, platform::objc::Sel message, platform::objc::Id sender) {
  if (platform::objc::send(self, "modalWindow") == nullptr) return originalTerminate(self, message, sender);
  say("refused to terminate");
}

// The alert is none of a main queue's, so it holds up no block that asks to quit.
void terminateUnderAnAlert() {
  originalTerminate = platform::cocoa::replaceMethod(platform::objc::classNamed("NSApplication"),
                                                     "terminate:", terminateAsOnAMac);
  later([] {
    terminate();
    say("asked to terminate");
    pressWhenActive("Return");
  });
  platform::host().alerts.runModal(
      {.messageText = "Somebody else's", .informativeText = "", .buttons = {{"OK", "\r"}}});
  say("answered");
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
  } else if (name == "terminate-under-alert") {
    terminateUnderAnAlert();
  } else if (name == "signal") {
    ::kill(::getpid(), SIGTERM);
  } else if (name == "signal-to-thread") {
    std::thread([] { ::raise(SIGTERM); }).detach();
  } else if (name == "throw") {
    later([] { terminate(); });
    throw std::runtime_error("cannot launch");
  } else if (name == "idle") {
    countSleepsWhileIdle();
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
  }
}

}  // namespace karno::test
