#include "platform/linux/notifications/distributed_notifications.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sdbus-c++/sdbus-c++.h>
#include <unistd.h>

#include <chrono>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "../../support/burst_census.h"
#include "../../support/forked_process.h"
#include "../../support/hand_queue.h"
#include "../../support/private_bus.h"
#include "../../support/scoped_environment.h"
#include "../../support/standard_error_capture.h"
#include "elements_are.h"
#include "notification_listener.h"
#include "platform/linux/notifications/bus_poster.h"
#include "platform/linux/notifications/notification_signal.h"
#include "platform/platform.h"
#include "sleeps_of_thread.h"

namespace karno::platform {
namespace {

using karno::test::ElementsAre;
using std::chrono::milliseconds;
using test::BurstCensus;
using test::ForkedProcess;
using test::HandQueue;
using test::kName;
using test::kObject;
using test::Listener;
using test::notification;
using test::PrivateBus;
using test::ScopedEnvironment;
using test::sleepsOfThread;
using test::StandardErrorCapture;
using test::StartSignal;

constexpr milliseconds kLongEnoughForAStray(200);

// Posts numbered notifications from a process of its own.
std::unique_ptr<ForkedProcess> startSender(std::int64_t sender, std::int64_t count, StartSignal& signal) {
  return std::make_unique<ForkedProcess>([=, &signal] {
    signal.wait();
    BusPoster poster(host().notices);
    for (std::int64_t number = 0; number < count; ++number) {
      if (!poster.post(notification(kName, kObject, {{"sender", sender}, {"number", number}}))) return 1;
    }
    return 0;
  });
}

// A child of a process with threads may find a lock taken for ever, so the senders are there before the
// thread that listens.
void expectBurstArrives(std::int64_t senders, std::int64_t each) {
  const PrivateBus bus;
  StartSignal signal;
  std::vector<std::unique_ptr<ForkedProcess>> processes;
  for (std::int64_t sender = 0; sender < senders; ++sender)
    processes.push_back(startSender(sender, each, signal));

  HandQueue main;
  BusNotifications centre(main, host().notices);
  BurstCensus census{.next = std::vector<std::int64_t>(static_cast<std::size_t>(senders))};
  centre.addObserver(&census, kName, kObject,
                     [&](const DistributedNotification& heard) { census.count(heard); });
  signal.give();
  main.runUntil([&] { return census.total == senders * each; });
  main.runFor(kLongEnoughForAStray);

  EXPECT_EQ(census.total, senders * each);
  EXPECT_EQ(census.outOfOrder, 0);
  for (const auto& process : processes) EXPECT_EQ(process->exitStatus(), 0);
}

TEST(BusNotifications, CarryNameObjectAndUserInformationToAnotherProcess) {
  const PrivateBus bus;
  HandQueue main;
  BusNotifications centre(main, host().notices);
  const Listener listener(centre, kName, kObject);
  const Value::Dictionary userInfo = {{"message", "user-selected-quit"},
                                      {"list", Value::Array{1, true, 2.5}}};

  ForkedProcess sender(
      [&] { return BusPoster(host().notices).post(notification(kName, kObject, userInfo)) ? 0 : 1; });
  ASSERT_TRUE(main.runUntil([&] { return !listener.heard().empty(); }));

  EXPECT_EQ(sender.exitStatus(), 0);
  ASSERT_EQ(listener.heard().size(), 1U);
  EXPECT_EQ(listener.heard().front().name, kName);
  EXPECT_EQ(listener.heard().front().object, kObject);
  EXPECT_EQ(listener.heard().front().userInfo, userInfo);
}

TEST(BusNotifications, RunHandlersOnlyOnTheMainQueue) {
  const PrivateBus bus;
  HandQueue main;
  BusNotifications centre(main, host().notices);
  const Listener listener(centre, kName, kObject);

  centre.post(notification(kName, kObject, {{"message", "late"}}));
  std::this_thread::sleep_for(kLongEnoughForAStray);
  const auto heardBefore = listener.heard().size();
  main.runUntil([&] { return !listener.heard().empty(); });

  EXPECT_EQ(heardBefore, 0U);
  EXPECT_THAT(listener.messages(), ElementsAre("late"));
}

TEST(BusNotifications, DeliverOnlyTheNameAndObjectThatAreObserved) {
  const PrivateBus bus;
  HandQueue main;
  BusNotifications centre(main, host().notices);
  const Listener listener(centre, kName, kObject);

  centre.post(notification(kName, "it.vantul.test.Other", {{"message", "other object"}}));
  centre.post(notification(kName, std::nullopt, {{"message", "no object"}}));
  centre.post(notification("it.vantul.test.NAME", kObject, {{"message", "other name"}}));
  centre.post(notification(std::string(kName) + ".more", kObject, {{"message", "longer name"}}));
  centre.post(notification(kName, kObject, {{"message", "right"}}));
  main.runUntil([&] { return !listener.heard().empty(); });
  main.runFor(kLongEnoughForAStray);

  EXPECT_THAT(listener.messages(), ElementsAre("right"));
}

TEST(BusNotifications, AskTheBusToSendNothingElse) {
  EXPECT_EQ(matchRule(kName, kObject),
            "type='signal',path='/it/vantul/DistributedNotificationCenter',"
            "interface='it.vantul.DistributedNotificationCenter',member='Posted',"
            "arg0='it.vantul.test.Name',arg1='it.vantul.test.Object'");
}

TEST(BusNotifications, ObserveTheEmptyObjectAndNamesWithQuotes) {
  const PrivateBus bus;
  HandQueue main;
  BusNotifications centre(main, host().notices);
  const Listener none(centre, kName, "");
  const Listener quoted(centre, "it's a \\ name", "o'bject");

  centre.post(notification(kName, std::nullopt, {{"message", "none"}}));
  centre.post(notification("it's a \\ name", "o'bject", {{"message", "quoted"}}));
  centre.post(notification("it's another", "o'bject", {{"message", "other"}}));
  main.runUntil([&] { return none.heard().size() + quoted.heard().size() == 2; });
  main.runFor(kLongEnoughForAStray);

  EXPECT_THAT(none.messages(), ElementsAre("none"));
  EXPECT_EQ(none.heard().front().object, std::nullopt);
  EXPECT_THAT(quoted.messages(), ElementsAre("quoted"));
}

TEST(BusNotifications, StartNoHandlerOnceTheObserverIsRemoved) {
  const PrivateBus bus;
  HandQueue main;
  BusNotifications centre(main, host().notices);
  Listener removed(centre, kName, kObject);
  removed.observe(kName, kObject);
  const Listener kept(centre, kName, kObject);

  for (int count = 0; count < 50; ++count) centre.post(notification(kName, kObject, {{"message", "x"}}));
  std::this_thread::sleep_for(kLongEnoughForAStray);  // all of them wait for the main queue now
  centre.removeObserver(&removed);
  main.runUntil([&] { return kept.heard().size() == 50; });

  EXPECT_EQ(removed.heard().size(), 0U);
}

TEST(BusNotifications, LetAHandlerRemoveItself) {
  const PrivateBus bus;
  HandQueue main;
  BusNotifications centre(main, host().notices);
  int calls = 0;
  centre.addObserver(&calls, kName, kObject, [&](const DistributedNotification&) {
    centre.removeObserver(&calls);
    ++calls;
  });

  for (int count = 0; count < 5; ++count) centre.post(notification(kName, kObject));
  main.runUntil([&] { return calls > 0; });
  main.runFor(kLongEnoughForAStray);

  EXPECT_EQ(calls, 1);
}

TEST(BusNotifications, GoOnInOrderWhileAHandlerRunsTheMainQueueItself) {
  const PrivateBus bus;
  HandQueue main;
  BusNotifications centre(main, host().notices);
  std::vector<std::int64_t> order;
  bool isModal = false;
  centre.addObserver(&order, kName, kObject, [&](const DistributedNotification& heard) {
    order.push_back(*heard.userInfo.at("number").get<std::int64_t>());
    if (!std::exchange(isModal, true)) main.runUntil([&] { return order.size() == 400; });
  });
  std::vector<std::int64_t> expected;

  for (std::int64_t number = 0; number < 400; ++number) {
    expected.push_back(number);
    centre.post(notification(kName, kObject, {{"number", number}}));
  }
  main.runUntil([&] { return order.size() == 400; });

  EXPECT_EQ(order, expected);
}

TEST(BusNotifications, ReportAHandlerThatThrowsAndGoOn) {
  const PrivateBus bus;
  HandQueue main;
  BusNotifications centre(main, host().notices);
  const StandardErrorCapture console;
  int observer = 0;
  centre.addObserver(&observer, kName, kObject,
                     [](const DistributedNotification&) { throw std::runtime_error("no luck"); });
  const Listener second(centre, kName, kObject);

  centre.post(notification(kName, kObject, {{"message", "hello"}}));
  main.runUntil([&] { return !second.heard().empty(); });

  EXPECT_EQ(console.text(), "Notifications: a handler threw an exception: no luck\n");
}

TEST(BusNotifications, PassOverSignalsOfAnotherForm) {
  const PrivateBus bus;
  HandQueue main;
  BusNotifications centre(main, host().notices);
  const Listener listener(centre, kName, kObject);
  const auto connection = sdbus::createSessionBusConnection();
  const auto object = sdbus::createObject(*connection, kNotificationPath);

  auto malformed = object->createSignal(kNotificationInterface, kNotificationMember);
  malformed << std::string(kName) << std::string(kObject) << std::string("no dictionary");
  object->emitSignal(malformed);
  auto shortened = object->createSignal(kNotificationInterface, kNotificationMember);
  shortened << std::string(kName) << std::string(kObject);
  object->emitSignal(shortened);
  centre.post(notification(kName, kObject, {{"message", "right"}}));
  main.runUntil([&] { return !listener.heard().empty(); });

  EXPECT_THAT(listener.messages(), ElementsAre("right"));
}

TEST(BusNotifications, RefuseToPostWhatTheBusCannotCarry) {
  const PrivateBus bus;
  HandQueue main;
  BusNotifications centre(main, host().notices);

  EXPECT_FALSE(centre.post(notification("caf\xE9", kObject)));
  EXPECT_FALSE(centre.post(notification(kName, std::string("a\0b", 3))));
  EXPECT_FALSE(centre.post(notification(kName, kObject, {{"message", "\xFF"}})));
  EXPECT_TRUE(centre.post(notification(kName, kObject, {{"message", "fine"}})));
}

TEST(BusNotifications, LoseNothingOfABurstFromFourProcesses) { expectBurstArrives(4, KARNO_BURST / 4); }

TEST(BusNotifications, LoseNothingWhileTheMainThreadIsBusyForLong) {
  constexpr auto kCount = static_cast<std::int64_t>(NotificationDelivery::kWaitingMax) * 3;
  const PrivateBus bus;
  StartSignal signal;
  const auto sender = startSender(0, kCount, signal);
  HandQueue main;
  BusNotifications centre(main, host().notices);
  BurstCensus census{.next = {0}};
  centre.addObserver(&census, kName, kObject,
                     [&](const DistributedNotification& heard) { census.count(heard); });

  signal.give();
  const int status = sender->exitStatus();  // all is posted before the main queue takes the first
  main.runUntil([&] { return census.total == kCount; });

  EXPECT_EQ(status, 0);
  EXPECT_EQ(census.total, kCount);
  EXPECT_EQ(census.outOfOrder, 0);
}

TEST(BusNotifications, AreHandedOverWholeBeforeThePosterEndsWithoutAnyCleanUp) {
  const PrivateBus bus;
  HandQueue main;
  BusNotifications centre(main, host().notices);
  const Listener listener(centre, kName, kObject);
  const std::string text(16U << 20U, 'x');  // more than the 8 MiB that the bus library lets a socket buffer

  ForkedProcess sender([&] {
    BusPoster poster(host().notices);
    poster.post(notification(kName, std::nullopt));  // connects
    bus.halt();
    ::_exit(poster.post(notification(kName, kObject, {{"message", text}})) ? 0 : 1);
    return 1;
  });
  bus.waitUntilHalted();
  std::this_thread::sleep_for(kLongEnoughForAStray);
  bus.goOn();
  main.runUntil([&] { return !listener.heard().empty(); }, std::chrono::seconds(20));

  EXPECT_EQ(sender.exitStatus(), 0);
  EXPECT_EQ(listener.messages(), std::vector<std::string>{text});
}

TEST(BusNotifications, SayWhenTheBusTakesNothing) {
  const PrivateBus bus;
  const StandardErrorCapture console;
  BusPoster poster(host().notices);
  ASSERT_TRUE(poster.post(notification(kName, kObject)));

  bus.halt();
  const bool posted = poster.post(notification(kName, kObject, {{"message", std::string(40U << 20U, 'x')}}));
  bus.goOn();

  EXPECT_FALSE(posted);
  EXPECT_EQ(console.text(),
            "Notifications: failed to post on the session bus. Reason: the bus takes no more\n");
}

TEST(BusNotifications, EndAtOnceAlsoWhenTheBusStandsStill) {
  const PrivateBus bus;
  HandQueue main;
  auto centre = std::make_unique<BusNotifications>(main, host().notices);
  auto listener = std::make_unique<Listener>(*centre, kName, kObject);
  bus.halt();
  const auto before = std::chrono::steady_clock::now();

  listener.reset();
  centre.reset();

  EXPECT_LT(std::chrono::steady_clock::now() - before, std::chrono::seconds(5));
}

TEST(BusNotifications, SayOnceThatThereIsNoBus) {
  const ScopedEnvironment address("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nowhere/bus");
  const ScopedEnvironment runtimeFolder("XDG_RUNTIME_DIR", "/nowhere");
  const StandardErrorCapture console;
  HandQueue main;
  BusNotifications centre(main, host().notices);

  const Listener first(centre, kName, kObject);
  const Listener second(centre, kName, kObject);

  EXPECT_EQ(console.text(),
            "Notifications: no session bus, none will be received until there is one. Reason: "
            "[org.freedesktop.DBus.Error.FileNotFound] Failed to open bus (No such file or directory)\n");
}

TEST(BusNotifications, FailToPostWithoutABusAndSayItOnce) {
  const ScopedEnvironment address("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nowhere/bus");
  const StandardErrorCapture console;
  HandQueue main;
  BusNotifications centre(main, host().notices);

  EXPECT_FALSE(centre.post(notification(kName, kObject)));
  EXPECT_FALSE(centre.post(notification(kName, kObject)));

  EXPECT_EQ(console.text(),
            "Notifications: failed to post on the session bus. Reason: "
            "[org.freedesktop.DBus.Error.FileNotFound] Failed to open bus (No such file or directory)\n");
}

TEST(BusNotifications, ConnectInAFewMilliseconds) {
  const PrivateBus bus;
  HandQueue main;
  const auto before = std::chrono::steady_clock::now();

  BusNotifications centre(main, host().notices);
  const Listener listener(centre, kName, kObject);

  EXPECT_LT(std::chrono::steady_clock::now() - before, milliseconds(250));  // about 2 ms on an idle machine
}

TEST(BusNotifications, DoNotWakeUpWhileThereIsNothingToHear) {
  const PrivateBus bus;
  HandQueue main;
  BusNotifications centre(main, host().notices);
  const Listener listener(centre, kName, kObject);
  ASSERT_TRUE(centre.post(notification(kName, kObject, {{"message", "x"}})));
  main.runUntil([&] { return !listener.heard().empty(); });
  std::this_thread::sleep_for(kLongEnoughForAStray);

  const std::string before = sleepsOfThread("Notifications");
  ::sleep(1);
  const std::string after = sleepsOfThread("Notifications");

  EXPECT_FALSE(before.empty());
  EXPECT_EQ(after, before);
}

}  // namespace
}  // namespace karno::platform
