#include "platform/alerts.h"

#include <gtest/gtest.h>

#include "screen.h"

namespace karno::test {
namespace {

std::string launchedAndEnded(const std::string& between) {
  return "did finish launching\n" + between + "will terminate\n";
}

TEST(CocoaAlertsOnScreen, ReturnPressesTheFirstButton) {
  const CommandResult result = onScreen("alert/return");

  EXPECT_EQ(result.output, launchedAndEnded("answer 1000\n"));
  EXPECT_EQ(result.status, 0);
}

TEST(CocoaAlertsOnScreen, EscapePressesTheButtonThatWasGivenIt) {
  const CommandResult result = onScreen("alert/escape");

  EXPECT_EQ(result.output, launchedAndEnded("answer 1001\n"));
  EXPECT_EQ(result.status, 0);
}

TEST(CocoaAlertsOnScreen, ReturnPressesTheFirstButtonAlsoWhenNoKeysWereGiven) {
  EXPECT_EQ(onScreen("alert/default-keys").output, launchedAndEnded("answer 1000\n"));
}

TEST(CocoaAlertsOnScreen, TheThirdButtonAnswers1002) {
  EXPECT_EQ(onScreen("alert/three-buttons").output, launchedAndEnded("answer 1002\n"));
}

TEST(CocoaAlertsOnScreen, AnAlertWithoutButtonsGetsOneThatReturnPresses) {
  EXPECT_EQ(onScreen("alert/no-button").output, launchedAndEnded("answer 1000\n"));
}

TEST(CocoaAlertsOnScreen, ABlockOfTheMainQueueCanShowOne) {
  EXPECT_EQ(onScreen("alert/from-main-queue").output, launchedAndEnded("answer 1000\n"));
}

TEST(CocoaAlertsOnScreen, ATerminationSignalEndsTheProcessInOrderWhileOneIsUp) {
  const CommandResult result = onScreen("alert/signal");

  EXPECT_EQ(result.output, launchedAndEnded(""));
  EXPECT_EQ(result.status, 0);
}

}  // namespace
}  // namespace karno::test
