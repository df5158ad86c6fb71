#include <fmt/format.h>
#include <signal.h>

#include <atomic>

#include "look.h"
#include "scenario.h"
#include "texts.h"

namespace karno::test {
namespace {

platform::Alert question() {
  return {.style = platform::AlertStyle::Critical,
          .messageText = "Whoops",
          .informativeText = "Something went wrong.\n\nGrüße \xF0\x9F\x98\x80",
          .buttons = {{"Ja", "\r"}, {"Nein", "\033"}}};
}

std::atomic<int>& answers() {
  static std::atomic<int> count{0};
  return count;
}

long answerOf(platform::Alerts& alerts, const platform::Alert& alert) {
  const long answer = alerts.runModal(alert);
  ++answers();
  return answer;
}

// A key can go to the window before, which is only just leaving: it is pressed again until the alert is
// answered.
void answerWhenActive(const std::string& key) {
  pressUntil(key, [before = answers().load()] { return answers().load() != before; });
}

void showAndEnd(platform::Alerts& alerts, const platform::Alert& alert) {
  say(fmt::format("answer {}", answerOf(alerts, alert)));
  terminate();
}

void showPicturesAndEnd(platform::Alerts& alerts, const platform::Alert& alert) {
  later([] {
    say(fmt::format("{} pictures, {}", picturesOnScreen(), complaints()));
    answerWhenActive("Return");
  });
  showAndEnd(alerts, alert);
}

void showLookAndEnd(platform::Alerts& alerts, const platform::Alert& alert) {
  later([] {
    say(visibleWindows().front().title);
    say(textsOnScreen());
    say(fmt::format("{}", complaints()));
    answerWhenActive("Return");
  });
  showAndEnd(alerts, alert);
}

platform::Alert alertOf(const PromptTexts& texts) {
  return {.messageText = texts.message,
          .informativeText = texts.explanation,
          .buttons = {{texts.continueTitle, ""}, {texts.cancelTitle, ""}}};
}

// Each is answered from the keyboard before the next one comes.
void measureAlerts(platform::Alerts& alerts) {
  for (const auto& [language, texts] : promptsOfManyLengths()) {
    later([name = language] {
      say(fmt::format("{}: {}", name, complaints()));
      answerWhenActive("Return");
    });
    answerOf(alerts, alertOf(texts));
  }
  terminate();
}

void showOneFromAnother(platform::Alerts& alerts) {
  later([&alerts] {
    answerWhenActive("Escape");
    say(fmt::format("inner answer {}", answerOf(alerts, question())));
    answerWhenActive("Return");
  });
  showAndEnd(alerts, question());
}

}  // namespace

void runAlertScenario(platform::Alerts& alerts, std::string_view name) {
  if (name == "return") {
    answerWhenActive("Return");
    showAndEnd(alerts, question());
  } else if (name == "escape") {
    answerWhenActive("Escape");
    showAndEnd(alerts, question());
  } else if (name == "default-keys") {
    answerWhenActive("Return");
    showAndEnd(
        alerts,
        {.messageText = "Update", .informativeText = "", .buttons = {{"Continue", ""}, {"Not now", ""}}});
  } else if (name == "three-buttons") {
    answerWhenActive("Escape");
    showAndEnd(
        alerts,
        {.messageText = "Pick", .informativeText = "", .buttons = {{"A", ""}, {"B", ""}, {"C", "\033"}}});
  } else if (name == "no-button") {
    answerWhenActive("Return");
    showAndEnd(alerts, {.messageText = "Could not move", .informativeText = "", .buttons = {}});
  } else if (name == "from-main-queue") {
    later([&alerts] {
      answerWhenActive("Return");
      showAndEnd(alerts, question());
    });
  } else if (name == "escape-without-keys") {
    answerWhenActive("Escape");
    showAndEnd(alerts, alertOf(englishPrompt()));
  } else if (name == "tab-space") {
    pressWhenActive("Tab space");
    showAndEnd(alerts, alertOf(englishPrompt()));
  } else if (name == "click") {
    later([] { clickWhenActive("Nein"); });
    showAndEnd(alerts, question());
  } else if (name == "close-button") {
    closeWhenActive();
    showAndEnd(alerts, question());
  } else if (name == "close-button-of-one") {
    closeWhenActive();
    showAndEnd(alerts, {.messageText = "Karno", .informativeText = "", .buttons = {{"OK", ""}}});
  } else if (name == "look") {
    showLookAndEnd(alerts, question());
  } else if (name == "look-without-button") {
    showLookAndEnd(alerts, {.messageText = "Karno", .informativeText = "", .buttons = {}});
  } else if (name == "critical") {
    showPicturesAndEnd(alerts, question());
  } else if (name == "informational") {
    showPicturesAndEnd(alerts, {.style = platform::AlertStyle::Informational,
                                .messageText = "Karno",
                                .informativeText = "",
                                .buttons = {{"OK", ""}}});
  } else if (name == "painted") {
    later(sayColourAndEnd);
    showAndEnd(alerts, question());
  } else if (name == "sizes") {
    measureAlerts(alerts);
  } else if (name == "nested") {
    showOneFromAnother(alerts);
  } else if (name == "signal") {
    signalWhenActive(SIGTERM);
    showAndEnd(alerts, question());
  }
}

}  // namespace karno::test
