#include <fmt/format.h>
#include <signal.h>

#include "scenario.h"

namespace karno::test {
namespace {

platform::Alert question() {
  return {.style = platform::AlertStyle::Critical,
          .messageText = "Whoops",
          .informativeText = "Something went wrong.\n\nGrüße \xF0\x9F\x98\x80",
          .buttons = {{"Ja", "\r"}, {"Nein", "\033"}}};
}

void showAndEnd(const platform::Alert& alert) {
  say(fmt::format("answer {}", platform::host().alerts.runModal(alert)));
  terminate();
}

}  // namespace

void runAlertScenario(std::string_view name) {
  if (name == "return") {
    pressWhenActive("Return");
    showAndEnd(question());
  } else if (name == "escape") {
    pressWhenActive("Escape");
    showAndEnd(question());
  } else if (name == "default-keys") {
    pressWhenActive("Return");
    showAndEnd(
        {.messageText = "Update", .informativeText = "", .buttons = {{"Continue", ""}, {"Not now", ""}}});
  } else if (name == "three-buttons") {
    pressWhenActive("Escape");
    showAndEnd(
        {.messageText = "Pick", .informativeText = "", .buttons = {{"A", ""}, {"B", ""}, {"C", "\033"}}});
  } else if (name == "no-button") {
    pressWhenActive("Return");
    showAndEnd({.messageText = "Could not move", .informativeText = "", .buttons = {}});
  } else if (name == "from-main-queue") {
    later([] {
      pressWhenActive("Return");
      showAndEnd(question());
    });
  } else if (name == "signal") {
    signalWhenActive(SIGTERM);
    showAndEnd(question());
  }
}

}  // namespace karno::test
