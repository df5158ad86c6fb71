#include <unistd.h>

#include <csignal>
#include <string>

#include "../../support/message_check.h"
#include "platform/cocoa/windows/alerts.h"
#include "scenario.h"

namespace {

constexpr int kNoRowStatus = 99;

// The output tells the test that runs the scenario.
void endForWantOfARow(const std::string& message) {
  karno::test::say("selectors.h has no row for " + message);
  ::_exit(kNoRowStatus);
}

}  // namespace

// Runs one scenario, named "group/name", in a real application and says on standard output what happens.
int main(int argc, char** argv) {
  karno::platform::trial::watchMessages(endForWantOfARow);
  const std::string argument = argc > 1 ? argv[1] : "";
  const std::string group = argument.substr(0, argument.find('/'));
  const std::string name = argument.substr(argument.find('/') + 1);
  return karno::platform::applicationMain(argc, argv, [group, name] {
    if (name == "signal-at-start") ::raise(SIGTERM);
    return std::make_shared<karno::test::SayingDelegate>([group, name] {
      if (group == "alert") {
        karno::test::runAlertScenario(karno::platform::host().alerts, name);
      } else if (group == "framework-alert") {
        // The alerts of macOS, on what GNUstep has of them.
        static karno::platform::cocoa::CocoaAlerts alerts;
        karno::test::runAlertScenario(alerts, name);
      } else if (group == "queue") {
        karno::test::runQueueScenario(name);
      } else if (group == "window") {
        karno::test::runWindowScenario(name);
      } else if (group == "prompt") {
        karno::test::runPromptScenario(name);
      } else if (group == "progress") {
        karno::test::runProgressScenario(name);
      } else {
        karno::test::runApplicationScenario(name);
      }
    });
  });
}
