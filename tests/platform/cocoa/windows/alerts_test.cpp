#include "platform/cocoa/windows/alerts.h"

#include <gtest/gtest.h>

#include "../screen.h"

namespace karno::test {
namespace {

std::string launchedAndEnded(const std::string& between) {
  return "did finish launching\n" + between + "will terminate\n";
}

TEST(CocoaAlertsOnScreen, ReturnPressesTheFirstButton) {
  const CommandResult result = onScreen("framework-alert/return");

  EXPECT_EQ(result.output, launchedAndEnded("answer 1000\n"));
  EXPECT_EQ(result.status, 0);
}

TEST(CocoaAlertsOnScreen, EscapePressesTheButtonThatWasGivenIt) {
  const CommandResult result = onScreen("framework-alert/escape");

  EXPECT_EQ(result.output, launchedAndEnded("answer 1001\n"));
  EXPECT_EQ(result.status, 0);
}

TEST(CocoaAlertsOnScreen, ReturnPressesTheFirstButtonAlsoWhenNoKeysWereGiven) {
  EXPECT_EQ(onScreen("framework-alert/default-keys").output, launchedAndEnded("answer 1000\n"));
}

TEST(CocoaAlertsOnScreen, TheThirdButtonAnswers1002) {
  EXPECT_EQ(onScreen("framework-alert/three-buttons").output, launchedAndEnded("answer 1002\n"));
}

TEST(CocoaAlertsOnScreen, AnAlertWithoutButtonsGetsOneThatReturnPresses) {
  EXPECT_EQ(onScreen("framework-alert/no-button").output, launchedAndEnded("answer 1000\n"));
}

TEST(CocoaAlertsOnScreen, ABlockOfTheMainQueueCanShowOne) {
  EXPECT_EQ(onScreen("framework-alert/from-main-queue").output, launchedAndEnded("answer 1000\n"));
}

TEST(CocoaAlertsOnScreen, ATerminationSignalEndsTheProcessInOrderWhileOneIsUp) {
  const CommandResult result = onScreen("framework-alert/signal");

  EXPECT_EQ(result.output, launchedAndEnded(""));
  EXPECT_EQ(result.status, 0);
}

TEST(CocoaAlertsOnScreen, EscapePressesTheSecondOfTwoButtonsWithoutKeys) {
  EXPECT_EQ(onScreen("framework-alert/escape-without-keys").output, launchedAndEnded("answer 1001\n"));
}

TEST(UsualAlertKeys, AreLeftAloneWhereEscapeIsGivenOrThereAreNotTwoButtons) {
  using platform::Alert;
  using platform::cocoa::withUsualKeys;

  const Alert reversed =
      withUsualKeys({.messageText = "", .informativeText = "", .buttons = {{"No", "\033"}, {"Yes", ""}}});
  const Alert three =
      withUsualKeys({.messageText = "", .informativeText = "", .buttons = {{"A", ""}, {"B", ""}, {"C", ""}}});
  const Alert one = withUsualKeys({.messageText = "", .informativeText = "", .buttons = {{"OK", ""}}});

  EXPECT_EQ(reversed.buttons[1].keyEquivalent, "");
  EXPECT_EQ(three.buttons[1].keyEquivalent, "");
  EXPECT_EQ(one.buttons[0].keyEquivalent, "");
}

}  // namespace
}  // namespace karno::test
