#include "platform/macos/notifications/distributed_notifications.h"

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>
#include <thread>

#include "../../support/standard_error_capture.h"
#include "../stand_in.h"
#include "elements_are.h"
#include "platform/cocoa/runtime/strings.h"
#include "platform/cocoa/runtime/threads.h"

namespace karno::platform::trial {
namespace {

using karno::test::ElementsAre;
using karno::test::StandardErrorCapture;

// Delivers a notification as the platform does: it sends the action that was given to the observer.
struct Observation {
  objc::Id target;  // not retained, which is the platform's way with observers
  objc::Sel action;
};

std::vector<Observation>& observations() {
  static std::vector<Observation> all;
  return all;
}

objc::Id defaultCenter(objc::Id, objc::Sel selector) { return answer(selector); }

void addObserver(objc::Id, objc::Sel selector, objc::Id observer, objc::Sel action, objc::Id name,
                 objc::Id object, objc::UInteger behaviour) {
  recordAndAnswer(selector, fmt::format("{} {} {}", shown(name), shown(object), behaviour));
  observations().push_back({observer, action});
}

void removeObserver(objc::Id, objc::Sel selector, objc::Id observer) {
  recordAndAnswer(selector);
  std::erase_if(observations(), [observer](const Observation& each) { return each.target == observer; });
}

void postNotification(objc::Id, objc::Sel selector, objc::Id name, objc::Id object, objc::Id userInfo,
                      objc::Boolean immediately) {
  const objc::Id message = objc::send(userInfo, "objectForKey:", objc::string("message"));
  recordAndAnswer(selector,
                  fmt::format("{} {} {} {}", shown(name), shown(object), shown(message), immediately));
}

Class centerClass() {
  static const Class made =
      StandInClass("StandInNotificationCenter")
          .classMethod("defaultCenter", "@@:", defaultCenter)
          .method("addObserver:selector:name:object:suspensionBehavior:", "v@:@:@@Q", addObserver)
          .method("removeObserver:", "v@:@", removeObserver)
          .method("postNotificationName:object:userInfo:deliverImmediately:", "v@:@@@C", postNotification)
          .registerClass();
  return made;
}

objc::Id notificationProperty(objc::Id, objc::Sel selector) { return answer(selector); }

Class notificationClass() {
  static const Class made = StandInClass("StandInNotification")
                                .method("name", "@@:", notificationProperty)
                                .method("object", "@@:", notificationProperty)
                                .method("userInfo", "@@:", notificationProperty)
                                .registerClass();
  return made;
}

objc::Object userInfoWithMessage(const char* message) {
  objc::Object dictionary = objc::make("NSMutableDictionary");
  objc::send<void>(dictionary, "setObject:forKey:", objc::string(message), objc::string("message"));
  return dictionary;
}

class MacDistributedNotifications : public testing::Test {
 protected:
  MacDistributedNotifications() {
    observations().clear();
    standIns_.answer("defaultCenter", instanceOf(centerClass()));
  }

  DistributedNotifications::Handler keep() {
    return [this](const DistributedNotification& notification) { received_.push_back(notification.name); };
  }

  // Gives every observer that the centre has a notification of the stand-ins' answers.
  static void deliver(const std::vector<Observation>& observers) {
    const objc::Object notification = instanceOf(notificationClass());
    for (const Observation& each : observers) {
      objc::send<void>(each.target, "performSelectorOnMainThread:withObject:waitUntilDone:", each.action,
                       notification, true);
    }
  }

  const objc::AutoreleasePool pool_;
  StandIns standIns_;
  const objc::ClassOverride override_{"NSDistributedNotificationCenter", centerClass()};
  FoundationDistributedNotifications notifications_;
  std::vector<std::string> received_;
  const int observer_ = 0;
};

TEST_F(MacDistributedNotifications, AreObservedByNameAndObjectWhileTheLauncherIsInactive) {
  notifications_.addObserver(&observer_, "name", "sender", keep());

  EXPECT_THAT(standIns_.messages(),
              ElementsAre("addObserver:selector:name:object:suspensionBehavior: name sender 4"));
}

TEST_F(MacDistributedNotifications, ComeWithNameObjectAndUserInformation) {
  standIns_.answer("name", objc::string("name"));
  standIns_.answer("object", objc::string("sender"));
  standIns_.answer("userInfo", userInfoWithMessage("user-selected-quit"));
  DistributedNotification received;
  notifications_.addObserver(&observer_, "name", "sender",
                             [&received](const DistributedNotification& each) { received = each; });

  deliver(observations());

  EXPECT_EQ("name", received.name);
  EXPECT_EQ("sender", received.object);
  EXPECT_EQ((Value::Dictionary{{"message", "user-selected-quit"}}), received.userInfo);
}

TEST_F(MacDistributedNotifications, MayComeWithoutObjectAndUserInformation) {
  standIns_.answer("name", objc::string("name"));
  DistributedNotification received{.name = "", .object = "left over", .userInfo = {{"left", "over"}}};
  notifications_.addObserver(&observer_, "name", "sender",
                             [&received](const DistributedNotification& each) { received = each; });

  deliver(observations());

  EXPECT_EQ("name", received.name);
  EXPECT_EQ(std::nullopt, received.object);
  EXPECT_EQ(Value::Dictionary(), received.userInfo);
}

TEST_F(MacDistributedNotifications, ComeTwiceToAnObserverAddedTwice) {
  standIns_.answer("name", objc::string("name"));
  notifications_.addObserver(&observer_, "name", "sender", keep());
  notifications_.addObserver(&observer_, "name", "sender", keep());

  deliver(observations());

  EXPECT_THAT(received_, ElementsAre("name", "name"));
}

TEST_F(MacDistributedNotifications, EndForAllRegistrationsOfTheObserver) {
  const int other = 0;
  notifications_.addObserver(&observer_, "name", "sender", keep());
  notifications_.addObserver(&other, "name", "sender", keep());
  notifications_.addObserver(&observer_, "name", "sender", keep());

  notifications_.removeObserver(&observer_);

  EXPECT_EQ(1u, observations().size());
  EXPECT_EQ(5u, standIns_.messages().size());
}

TEST_F(MacDistributedNotifications, ThatArriveLateReachNoHandler) {
  notifications_.addObserver(&observer_, "name", "sender", keep());
  const std::vector<Observation> late = observations();
  const objc::Object keptByThePlatform = objc::Object::retaining(late.front().target);

  notifications_.removeObserver(&observer_);
  deliver(late);

  EXPECT_THAT(received_, ElementsAre());
}

TEST_F(MacDistributedNotifications, MayBeEndedByAnotherThread) {
  notifications_.addObserver(&observer_, "name", "sender", keep());
  const std::vector<Observation> late = observations();
  std::thread([this] {
    const cocoa::ThreadPoolScope scope;
    notifications_.removeObserver(&observer_);
  }).join();

  deliver(late);

  EXPECT_EQ(0u, observations().size());
  EXPECT_THAT(received_, ElementsAre());
}

TEST_F(MacDistributedNotifications, MayBeEndedByTheirOwnHandler) {
  standIns_.answer("name", objc::string("name"));
  notifications_.addObserver(&observer_, "name", "sender", [this](const DistributedNotification& each) {
    notifications_.removeObserver(&observer_);
    received_.push_back(each.name);
  });

  deliver(observations());
  deliver(observations());

  EXPECT_THAT(received_, ElementsAre("name"));
}

TEST_F(MacDistributedNotifications, ArePostedAtOnceWithAllTheyHold) {
  const bool posted =
      notifications_.post({.name = "name", .object = "sender", .userInfo = {{"message", "restart-wrapper"}}});

  EXPECT_TRUE(posted);
  EXPECT_THAT(standIns_.messages(),
              ElementsAre("postNotificationName:object:userInfo:deliverImmediately: name "
                          "sender restart-wrapper 1"));
}

TEST_F(MacDistributedNotifications, ArePostedWithoutAnObject) {
  const bool posted = notifications_.post({.name = "name", .object = std::nullopt, .userInfo = {}});

  EXPECT_TRUE(posted);
  EXPECT_THAT(standIns_.messages(),
              ElementsAre("postNotificationName:object:userInfo:deliverImmediately: name nil nil 1"));
}

TEST_F(MacDistributedNotifications, ThatCannotBePostedAreReported) {
  const StandardErrorCapture console;
  standIns_.raise();

  EXPECT_FALSE(notifications_.post({.name = "name", .object = std::nullopt, .userInfo = {}}));
  EXPECT_EQ(console.text(), "posting a distributed notification: raised by a stand-in\n");
}

TEST_F(MacDistributedNotifications, AreNotPostedWithoutACentre) {
  standIns_.answer("defaultCenter", objc::Object());

  EXPECT_FALSE(notifications_.post({.name = "name", .object = std::nullopt, .userInfo = {}}));
}

TEST_F(MacDistributedNotifications, ThatAreNestedTooDeeplyAreNotPostedWithoutTheirContent) {
  Value nested = "in the middle";
  for (int depth = 0; depth < 100; ++depth) nested = Value(Value::Array{nested});

  EXPECT_FALSE(notifications_.post({.name = "name", .object = std::nullopt, .userInfo = {{"a", nested}}}));
  EXPECT_THAT(standIns_.messages(), ElementsAre());
}

TEST_F(MacDistributedNotifications, MayHaveNoName) {
  notifications_.addObserver(&observer_, "name", "sender", keep());

  deliver(observations());

  EXPECT_THAT(received_, ElementsAre(""));
}

TEST_F(MacDistributedNotifications, GiveNothingBackThatTheyWereOnlyLent) {
  notifications_.addObserver(&observer_, "name", "sender", keep());
  {
    const objc::AutoreleasePool pool;
    deliver(observations());
  }

  EXPECT_EQ(standIns_.liveCount(), 1);  // the centre
}

TEST_F(MacDistributedNotifications, WhatAHandlerThrowsEndsOnTheConsole) {
  const StandardErrorCapture console;
  notifications_.addObserver(&observer_, "name", "sender", [](const DistributedNotification&) {
    throw std::runtime_error("out of order");
  });

  deliver(observations());

  EXPECT_EQ(console.text(), "karnoCall:: out of order\n");
}

TEST_F(MacDistributedNotifications, WhatTheCentreRaisesEndsOnTheConsole) {
  const StandardErrorCapture console;
  standIns_.raise();

  notifications_.addObserver(&observer_, "name", "sender", keep());
  notifications_.removeObserver(&observer_);

  EXPECT_EQ(console.text(),
            "observing distributed notifications: raised by a stand-in\n"
            "leaving distributed notifications: raised by a stand-in\n");
}

// The centre would go on sending to those that it still has.
TEST_F(MacDistributedNotifications, AreLeftOneByOneWhenTheCentreRaises) {
  const StandardErrorCapture console;
  const int other = 0;
  {
    FoundationDistributedNotifications shortLived;
    shortLived.addObserver(&observer_, "name", "sender", keep());
    shortLived.addObserver(&observer_, "name", "sender", keep());
    shortLived.addObserver(&other, "name", "sender", keep());
    standIns_.raise();

    shortLived.removeObserver(&observer_);
  }

  EXPECT_EQ(console.text(),
            "leaving distributed notifications: raised by a stand-in\n"
            "leaving distributed notifications: raised by a stand-in\n"
            "leaving distributed notifications: raised by a stand-in\n");
}

TEST_F(MacDistributedNotifications, ThatArriveAfterTheEndReachNoHandler) {
  objc::Object keptByThePlatform;
  {
    FoundationDistributedNotifications shortLived;
    shortLived.addObserver(&observer_, "name", "sender", keep());
    keptByThePlatform = objc::Object::retaining(observations().front().target);
  }

  deliver({{keptByThePlatform.get(), cocoa::Callback::action()}});

  EXPECT_THAT(received_, ElementsAre());
}

TEST_F(MacDistributedNotifications, LeaveNoObserverBehind) {
  {
    FoundationDistributedNotifications shortLived;
    shortLived.addObserver(&observer_, "name", "sender", keep());
  }

  EXPECT_EQ(0u, observations().size());
}

}  // namespace
}  // namespace karno::platform::trial
