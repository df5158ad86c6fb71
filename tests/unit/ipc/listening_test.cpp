#include "elements_are.h"
#include "ipc/karno_wrappper_notifier_listener.h"
#include "listener.h"
#include "printing.h"

namespace karno {
namespace {

using karno::test::ElementsAre;
using test::FakePlatform;
using test::Line;
using ::testing::IsEmpty;

constexpr const char* kName = "it.vantul.Karno.KarnoWrapperNotification";

using Listening = test::Listener;

TEST_F(Listening, DoesNotHearAnotherObjectOrNone) {
  machine.notifications.post(
      {.name = kName, .object = "somebody else", .userInfo = {{"message", "user-selected-quit"}}});
  machine.notifications.post(
      {.name = kName, .object = std::nullopt, .userInfo = {{"message", "user-selected-quit"}}});
  machine.runFor(6);

  EXPECT_THAT(machine.console(), IsEmpty());
  EXPECT_EQ(machine.application.terminations(), 0);
}

TEST_F(Listening, DoesNotHearAnotherName) {
  machine.notifications.post(
      {.name = "it.vantul.Karno", .object = kName, .userInfo = {{"message", "user-selected-quit"}}});
  machine.runFor(6);

  EXPECT_THAT(machine.console(), IsEmpty());
}

TEST_F(Listening, HandlesNotificationsOnTheMainThread) {
  machine.postMessage("hello");
  machine.runUntilIdle();

  EXPECT_EQ(machine.consoleLog.entries().at(0).thread, "main");
}

TEST_F(Listening, StartedTwiceHandlesEverythingTwice) {
  KarnoWrappperNotifierListener::manager().start();

  machine.postMessage("user-selected-quit");
  machine.runFor(11);

  EXPECT_THAT(machine.log(), ElementsAre(Line("INFO", "Notify[LISTEN] Received 'user-selected-quit'"),
                                         Line("INFO", "AppDelegate[TERMINATE] Reason: User selected quit"),
                                         Line("INFO", "Notify[LISTEN] Received 'user-selected-quit'"),
                                         Line("INFO", "AppDelegate[TERMINATE] Reason: User selected quit")));
}

TEST_F(Listening, HearsNothingAfterItsStop) {
  KarnoWrappperNotifierListener::manager().start();

  KarnoWrappperNotifierListener::manager().stop();
  machine.postMessage("user-selected-quit");
  machine.runFor(6);

  EXPECT_EQ(machine.notifications.observerCount(), 0U);
  EXPECT_THAT(machine.console(), IsEmpty());
}

TEST_F(Listening, CanBeStartedAgain) {
  KarnoWrappperNotifierListener::manager().stop();

  KarnoWrappperNotifierListener::manager().start();
  machine.postMessage("hello");
  machine.runUntilIdle();

  EXPECT_EQ(machine.consoleMessages().at(0), Line("INFO", "Notify[LISTEN] Received 'hello'"));
}

TEST(ListenerBeforeItsStart, HearsNothing) {
  FakePlatform machine;
  static_cast<void>(KarnoWrappperNotifierListener::manager());

  machine.postMessage("user-selected-quit");
  machine.runFor(6);

  EXPECT_THAT(machine.console(), IsEmpty());
}

TEST_F(Listening, HandlesTenThousandNotificationsInABurstInTheirOrder) {
  std::vector<Line> expected;
  for (int i = 0; i < 10'000; ++i) {
    const std::string message = "burst " + std::to_string(i);
    expected.emplace_back("INFO", "Notify[LISTEN] Received '" + message + "'");
    expected.emplace_back("WARN", "Notify[LISTEN] Received an unknown notification '" + message + "'");
    machine.postMessage(message);
  }
  machine.postMessage("user-selected-quit");
  expected.emplace_back("INFO", "Notify[LISTEN] Received 'user-selected-quit'");
  expected.emplace_back("INFO", "AppDelegate[TERMINATE] Reason: User selected quit");

  machine.runFor(6);

  EXPECT_EQ(machine.log(), expected);
  EXPECT_EQ(machine.application.terminations(), 1);
}

TEST_F(Listening, SurvivesTenThousandWishesToQuit) {
  for (int i = 0; i < 10'000; ++i) machine.postMessage("user-selected-quit");

  machine.runFor(6);

  EXPECT_EQ(machine.application.terminations(), 10'000);
}

}  // namespace
}  // namespace karno
