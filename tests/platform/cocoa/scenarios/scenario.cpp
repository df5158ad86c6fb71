#include "scenario.h"

#include <cstdio>

namespace karno::test {

void say(std::string_view line) {
  const std::string text = std::string(line) + "\n";
  std::fwrite(text.data(), 1, text.size(), stdout);
  std::fflush(stdout);
}

void SayingDelegate::applicationDidFinishLaunching() {
  say("did finish launching");
  begin_();
}

void SayingDelegate::applicationWillTerminate() { say("will terminate"); }

void later(std::function<void()> block) { platform::host().dispatch.mainQueue().async(std::move(block)); }

void terminate() { platform::host().application.terminate(); }

}  // namespace karno::test
