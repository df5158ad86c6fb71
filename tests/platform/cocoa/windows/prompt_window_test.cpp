#include "platform/cocoa/windows/prompt_window.h"

#include <gtest/gtest.h>

#include "../screen.h"

namespace karno::test {
namespace {

std::string launchedThePromptAndEnded(const std::string& between) {
  return "did finish launching\n" + between + "will terminate\n";
}

TEST(PromptWindowOnScreen, ReturnPressesContinue) {
  EXPECT_EQ(onScreen("prompt/key-return").output, launchedThePromptAndEnded("continue\nwill close\n"));
}

TEST(PromptWindowOnScreen, EscapePressesCancel) {
  EXPECT_EQ(onScreen("prompt/key-escape").output, launchedThePromptAndEnded("cancel\nwill close\n"));
}

TEST(PromptWindowOnScreen, TheTabulatorGoesFromContinueToCancel) {
  EXPECT_EQ(onScreen("prompt/key-tab-space").output, launchedThePromptAndEnded("cancel\nwill close\n"));
}

TEST(PromptWindowOnScreen, TheTabulatorComesBackToContinue) {
  EXPECT_EQ(onScreen("prompt/key-tab-tab-space").output, launchedThePromptAndEnded("continue\nwill close\n"));
}

TEST(PromptWindowOnScreen, ItsButtonsCanBeClicked) {
  EXPECT_EQ(onScreen("prompt/click-continue").output, launchedThePromptAndEnded("continue\nwill close\n"));
  EXPECT_EQ(onScreen("prompt/click-cancel").output, launchedThePromptAndEnded("cancel\nwill close\n"));
}

TEST(PromptWindowOnScreen, ItsCloseButtonTellsTheObserversAndPressesNothing) {
  EXPECT_EQ(onScreen("prompt/close-button").output, launchedThePromptAndEnded("will close\n0 on screen\n"));
}

TEST(PromptWindowOnScreen, ClosingItBeforeItWasShownMakesNoNativeWindow) {
  EXPECT_EQ(onScreen("prompt/never-shown").output, launchedThePromptAndEnded("will close\n0 windows more\n"));
}

TEST(PromptWindowOnScreen, CanBeShownAgainAndAnObserverCanRemoveAll) {
  EXPECT_EQ(
      onScreen("prompt/show-again").output,
      launchedThePromptAndEnded("will close, then nobody is told any more\n1 on screen\n0 on screen\n"));
}

TEST(PromptWindowOnScreen, ShowsTheTextsItHasNowUnderTheApplicationsName) {
  EXPECT_EQ(
      onScreen("prompt/texts").output,
      launchedThePromptAndEnded(
          "Karno\n"
          "Karno needs macFUSE to show your drive on this Mac.\n"
          "Press Continue to open the macFUSE web site. Download and install macFUSE there; Karno goes on by "
          "itself as soon as it is installed.\n"
          "Continue\n"
          "Cancel\n"
          "\n"
          "Karno benötigt macFUSE, um Ihr Laufwerk auf diesem Mac anzuzeigen.\n"
          "Klicken Sie auf „Fortfahren“, um die macFUSE-Website zu öffnen. Laden Sie macFUSE dort herunter "
          "und "
          "installieren Sie die Dateisystemerweiterung; Karno wird automatisch fortgesetzt, sobald die "
          "Installation abgeschlossen ist.\n"
          "Fortfahren\n"
          "Abbrechen\n"
          "\n"));
}

TEST(PromptWindowOnScreen, IsPainted) {
  EXPECT_EQ(onScreen("prompt/painted").output, launchedThePromptAndEnded("F3F3F3\n"));
}

TEST(PromptWindowOnScreen, IsLargeEnoughForEveryText) {
  EXPECT_EQ(onScreen("prompt/sizes").output, launchedThePromptAndEnded("nothing: nothing\n"
                                                                       "one letter: nothing\n"
                                                                       "English: nothing\n"
                                                                       "German: nothing\n"
                                                                       "Japanese: nothing\n"
                                                                       "one long word: nothing\n"
                                                                       "long titles: nothing\n"
                                                                       "many sentences: nothing\n"
                                                                       "many lines: nothing\n"));
}

}  // namespace
}  // namespace karno::test
