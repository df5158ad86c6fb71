#include <fmt/format.h>

#include "look.h"
#include "scenario.h"
#include "texts.h"

namespace karno::test {
namespace {

// Kept to the end of the process unless a scenario lets go of it.
std::unique_ptr<platform::ProgressWindow>& progress() {
  static std::unique_ptr<platform::ProgressWindow> window = platform::host().windows.makeProgressWindow();
  return window;
}

void showFilled() {
  progress()->setTitle("Installing");
  progress()->textField().setStringValue("Waiting for macFUSE");
  progress()->cancelButton().setTitle("Cancel");
  progress()->progressIndicator().setMinValue(0);
  progress()->progressIndicator().setMaxValue(100);
  progress()->progressIndicator().setDoubleValue(42);
  progress()->show();
  platform::host().application.activateIgnoringOtherApps();
}

void sayWhatIsSeen() {
  say(fmt::format("{}\n{}{}", visibleWindows().front().title, textsOnScreen(), barOnScreen()));
}

void fillAndChange() {
  showFilled();
  sayWhatIsSeen();
  progress()->setTitle("Einrichtung");
  progress()->textField().setStringValue("Es wird auf macFUSE gewartet");
  progress()->cancelButton().setTitle("Abbrechen");
  progress()->progressIndicator().setDoubleValue(99.5);
  sayWhatIsSeen();
  terminate();
}

void closeAndShowAgain() {
  showFilled();
  progress()->close();
  progress()->progressIndicator().stopAnimation();
  say(fmt::format("{} on screen", visibleWindows().size()));
  progress()->show();
  say(fmt::format("{} on screen", visibleWindows().size()));
  terminate();
}

void measureTexts() {
  showFilled();
  for (const auto& [language, texts] : promptsOfManyLengths()) {
    progress()->textField().setStringValue(texts.explanation);
    progress()->cancelButton().setTitle(texts.cancelTitle);
    say(fmt::format("{}: {}", language, complaints()));
  }
  terminate();
}

void cancel(const std::function<void()>& press) {
  progress()->cancelButton().setAction([] {
    say("cancel");
    terminate();
  });
  showFilled();
  press();
}

void destroyInItsOwnAction() {
  progress()->cancelButton().setAction([] {
    progress().reset();
    say(fmt::format("{} on screen", visibleWindows().size()));
    later(terminate);
  });
  showFilled();
  clickWhenActive("Cancel");
}

void growOnScreen() {
  showFilled();
  later([] {
    progress()->textField().setStringValue(germanPrompt().explanation);
    sayColourAndEnd();
  });
}

}  // namespace

void runProgressScenario(std::string_view name) {
  if (name == "texts") {
    fillAndChange();
  } else if (name == "show-again") {
    closeAndShowAgain();
  } else if (name == "sizes") {
    measureTexts();
  } else if (name == "key-escape") {
    cancel([] { pressWhenActive("Escape"); });
  } else if (name == "key-space") {
    cancel([] { pressWhenActive("space"); });
  } else if (name == "close-button") {
    cancel(closeWhenActive);
  } else if (name == "click") {
    cancel([] { clickWhenActive("Cancel"); });
  } else if (name == "painted") {
    showFilled();
    sayColourAndEnd();
  } else if (name == "painted-anew") {
    growOnScreen();
  } else if (name == "destroyed-by-cancel") {
    destroyInItsOwnAction();
  }
}

}  // namespace karno::test
