#include <fmt/format.h>

#include "look.h"
#include "scenario.h"
#include "texts.h"

namespace karno::test {
namespace {

platform::PromptWindow& prompt() { return platform::host().windows.promptWindow(); }

void fill(const PromptTexts& texts) {
  prompt().fuseMessage().setStringValue(texts.message);
  prompt().continueMessage().setStringValue(texts.explanation);
  prompt().continueButton().setTitle(texts.continueTitle);
  prompt().cancelButton().setTitle(texts.cancelTitle);
}

void show() {
  prompt().makeKeyAndOrderFront();
  platform::host().application.activateIgnoringOtherApps();
}

void showWithActions() {
  fill(englishPrompt());
  prompt().addWillCloseObserver([] { say("will close"); });
  prompt().continueButton().setAction([] {
    say("continue");
    prompt().close();
    terminate();
  });
  prompt().cancelButton().setAction([] {
    say("cancel");
    prompt().close();
    terminate();
  });
  show();
}

void closeByTheWindowManager() {
  showWithActions();
  prompt().addWillCloseObserver([] {
    later([] {
      say(fmt::format("{} on screen", visibleWindows().size()));
      terminate();
    });
  });
  closeWhenActive();
}

void closeWithoutHavingBeenShown() {
  const std::size_t before = windowCount();
  fill(englishPrompt());
  prompt().addWillCloseObserver([] { say("will close"); });
  prompt().close();
  say(fmt::format("{} windows more", windowCount() - before));
  terminate();
}

void showAgain() {
  fill(englishPrompt());
  prompt().addWillCloseObserver([] {
    prompt().removeWillCloseObservers();
    say("will close, then nobody is told any more");
  });
  prompt().addWillCloseObserver([] { say("never said"); });
  show();
  prompt().close();
  show();
  say(fmt::format("{} on screen", visibleWindows().size()));
  prompt().close();
  say(fmt::format("{} on screen", visibleWindows().size()));
  terminate();
}

void readTexts() {
  fill(englishPrompt());
  show();
  say(visibleWindows().front().title);
  say(textsOnScreen());
  fill(germanPrompt());
  say(textsOnScreen());
  terminate();
}

void measurePromptTexts() {
  show();
  for (const auto& [language, texts] : promptsOfManyLengths()) {
    fill(texts);
    say(fmt::format("{}: {}", language, complaints()));
  }
  terminate();
}

}  // namespace

void runPromptScenario(std::string_view name) {
  if (name == "key-return") {
    showWithActions();
    pressWhenActive("Return");
  } else if (name == "key-escape") {
    showWithActions();
    pressWhenActive("Escape");
  } else if (name == "key-tab-space") {
    showWithActions();
    pressWhenActive("Tab space");
  } else if (name == "key-tab-tab-space") {
    showWithActions();
    pressWhenActive("Tab Tab space");
  } else if (name == "click-continue") {
    showWithActions();
    clickWhenActive(englishPrompt().continueTitle);
  } else if (name == "click-cancel") {
    showWithActions();
    clickWhenActive(englishPrompt().cancelTitle);
  } else if (name == "close-button") {
    closeByTheWindowManager();
  } else if (name == "never-shown") {
    closeWithoutHavingBeenShown();
  } else if (name == "show-again") {
    showAgain();
  } else if (name == "painted") {
    fill(englishPrompt());
    show();
    sayColourAndEnd();
  } else if (name == "texts") {
    readTexts();
  } else if (name == "sizes") {
    measurePromptTexts();
  }
}

}  // namespace karno::test
