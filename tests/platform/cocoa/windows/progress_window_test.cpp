#include "platform/cocoa/windows/progress_window.h"

#include <gtest/gtest.h>

#include "../screen.h"
#include "platform/cocoa/windows/windows.h"

namespace karno::test {
namespace {

std::string launchedTheWindowAndEnded(const std::string& between) {
  return "did finish launching\n" + between + "will terminate\n";
}

TEST(UnshownProgressWindow, KeepsWhatItIsGivenBeforeItIsShown) {
  platform::cocoa::CocoaWindows windows;
  const auto window = windows.makeProgressWindow();

  window->textField().setStringValue("Waiting");
  window->cancelButton().setTitle("Cancel");
  window->progressIndicator().setDoubleValue(42);
  window->close();

  EXPECT_EQ(window->textField().stringValue(), "Waiting");
  EXPECT_EQ(window->cancelButton().title(), "Cancel");
  EXPECT_EQ(window->progressIndicator().doubleValue(), 42);
}

TEST(ProgressWindowOnScreen, ShowsItsTextsAndItsBarAndFollowsTheirChanges) {
  EXPECT_EQ(onScreen("progress/texts").output, launchedTheWindowAndEnded("Installing\n"
                                                                         "Waiting for macFUSE\n"
                                                                         "Cancel\n"
                                                                         "0 to 100, at 42\n"
                                                                         "Einrichtung\n"
                                                                         "Es wird auf macFUSE gewartet\n"
                                                                         "Abbrechen\n"
                                                                         "0 to 100, at 99.5\n"));
}

TEST(ProgressWindowOnScreen, CanBeClosedAndShownAgain) {
  EXPECT_EQ(onScreen("progress/show-again").output, launchedTheWindowAndEnded("0 on screen\n1 on screen\n"));
}

TEST(ProgressWindowOnScreen, EscapePressesCancel) {
  EXPECT_EQ(onScreen("progress/key-escape").output, launchedTheWindowAndEnded("cancel\n"));
}

TEST(ProgressWindowOnScreen, TheSpaceBarPressesCancel) {
  EXPECT_EQ(onScreen("progress/key-space").output, launchedTheWindowAndEnded("cancel\n"));
}

TEST(ProgressWindowOnScreen, ClosingItPressesCancel) {
  EXPECT_EQ(onScreen("progress/close-button").output, launchedTheWindowAndEnded("cancel\n"));
}

TEST(ProgressWindowOnScreen, ItsButtonCanBeClicked) {
  EXPECT_EQ(onScreen("progress/click").output, launchedTheWindowAndEnded("cancel\n"));
}

TEST(ProgressWindowOnScreen, IsPaintedWhenItIsShownAndWhenItGrows) {
  EXPECT_EQ(onScreen("progress/painted").output, launchedTheWindowAndEnded("F3F3F3\n"));
  EXPECT_EQ(onScreen("progress/painted-anew").output, launchedTheWindowAndEnded("F3F3F3\n"));
}

TEST(ProgressWindowOnScreen, MayBeDestroyedByThePressOfItsButton) {
  const CommandResult result = onScreen("progress/destroyed-by-cancel");

  EXPECT_EQ(result.output, launchedTheWindowAndEnded("0 on screen\n"));
  EXPECT_EQ(result.status, 0);
}

TEST(ProgressWindowOnScreen, IsLargeEnoughForEveryText) {
  EXPECT_EQ(onScreen("progress/sizes").output, launchedTheWindowAndEnded("nothing: nothing\n"
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
