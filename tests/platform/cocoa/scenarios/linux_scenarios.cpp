#include <fmt/format.h>
#include <objc/runtime.h>
#include <unistd.h>

#include <chrono>
#include <fstream>
#include <stdexcept>
#include <string>
#include <thread>

#include "look.h"
#include "platform/cocoa/runtime/objc.h"
#include "platform/cocoa/runtime/strings.h"
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

using platform::objc::Boolean;
using platform::objc::Id;
using platform::objc::Sel;
using platform::objc::UInteger;

void sayFontsOfLanguages() {
  for (const char* sentence :
       {"Karno has quit unexpectedly.", "Karno s’est arrêté. Aşağı, ёлка", "出错了！Karno 意外退出。",
        "發生錯誤！Karno 未預期地結束。", "問題が起きました。もう一度起動しますか？",
        "문제가 발생했습니다. Karno를 다시 실행", "錯 Karno 错 エラー 오류 ё"}) {
    say(fmt::format("{} | {} | {}", sentence, fontsOf(sentence, false), fontsOf(sentence, true)));
  }
  terminate();
}

void setCollectionBehavior(Id, Sel, UInteger behaviour) { say(fmt::format("on Space: {}", behaviour)); }
void setRestorable(Id, Sel, Boolean isRestorable) { say(fmt::format("restorable: {}", isRestorable)); }
void setAccessibilityLabel(Id view, Sel, Id text) {
  say(fmt::format("{}: {}", object_getClassName(view), platform::objc::text(text)));
}

template <class... Arguments>
void add(const char* className, const char* message, void (*method)(Id, Sel, Arguments...)) {
  const auto function = reinterpret_cast<void (*)()>(method);
  class_replaceMethod(objc_getClass(className), sel_registerName(message), reinterpret_cast<IMP>(function),
                      "v@:@");
}

// With the methods that only a Mac's windows have.
void showWindowsOfAMac() {
  add("NSWindow", "setCollectionBehavior:", setCollectionBehavior);
  add("NSWindow", "setRestorable:", setRestorable);
  add("NSView", "setAccessibilityLabel:", setAccessibilityLabel);
  const auto progress = platform::host().windows.makeProgressWindow();
  progress->textField().setStringValue("Downloading");
  progress->show();
  platform::host().windows.promptWindow().makeKeyAndOrderFront();
  terminate();
}

}  // namespace

void runScenarioOfThisSystem(std::string_view name) {
  if (name == "terminate-under-alert") {
    terminateUnderAnAlert();
  } else if (name == "idle") {
    countSleepsWhileIdle();
  } else if (name == "fonts") {
    sayFontsOfLanguages();
  } else if (name == "mac-windows") {
    showWindowsOfAMac();
  }
}

}  // namespace karno::test
