#include "platform/cocoa/windows/controls.h"

#include <gtest/gtest.h>

#include "../screen.h"

namespace karno::test {
namespace {

TEST(CocoaControlsOnScreen, KeysPressTheButtonsThatHaveThem) {
  EXPECT_EQ(onScreen("window/keys").output,
            "did finish launching\nclicked Weiter\nclicked Abbrechen\nwill terminate\n");
}

TEST(CocoaControlsOnScreen, TextsAreReadAndChangedAndADisabledButtonDoesNothing) {
  EXPECT_EQ(onScreen("window/controls").output,
            "did finish launching\n"
            "Karno Größe alt Los\n"
            "Zwei zwei neu Halt\n"
            "clicked\n"
            "will terminate\n");
}

TEST(CocoaControlsOnScreen, AWindowAnnouncesItsClosingAndCanBeShownAgain) {
  const CommandResult result = onScreen("window/close");

  EXPECT_EQ(result.output,
            "did finish launching\n"
            "visible true\n"
            "will close, visible true\n"
            "visible false\n"
            "quit on close\n"
            "will terminate\n");
  EXPECT_EQ(result.status, 0);
}

TEST(CocoaControlsOnScreen, AWindowThatHasTheFocusTakesKeysThoughItsApplicationWasDeactivated) {
  EXPECT_EQ(onScreen("window/deactivated").output,
            "did finish launching\ndeactivated\nclicked Weiter\nwill terminate\n");
}

TEST(CocoaControlsOnScreen, WindowsOfAMacComeToTheUsersSpaceAreNotRestoredAndSayWhatTheyShow) {
  EXPECT_EQ(onScreen("application/mac-windows").output,
            "did finish launching\n"
            "on Space: 2\n"
            "restorable: 0\n"
            "NSProgressIndicator: Downloading\n"
            "on Space: 2\n"
            "restorable: 0\n"
            "NSImageView: Karno\n"
            "will terminate\n");
}

TEST(CocoaControlsOnScreen, ADestroyedWindowSaysNothing) {
  EXPECT_EQ(onScreen("window/destroyed").output, "did finish launching\ngone\nwill terminate\n");
}

TEST(ScrollingTextsOnScreen, BeginWithWholeLines) {
  EXPECT_EQ(onScreen("window/whole-lines").output,
            "did finish launching\ntrue true true\ntrue true true\ntrue true true\nwill terminate\n");
}

}  // namespace
}  // namespace karno::test
