#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <objc/runtime.h>

#include <stdexcept>

#include "elements_are.h"
#include "message_send.h"
#include "platform/cocoa/runtime/guarded.h"
#include "platform/cocoa/runtime/raised_exception.h"
#include "platform/cocoa/runtime/strings.h"
#include "stand_in.h"

namespace karno::platform::trial {
namespace {

using karno::test::ElementsAre;

objc::Id initWindow(objc::Id self, objc::Sel selector, objc::Rect frame, objc::UInteger style,
                    objc::UInteger backing, objc::Boolean isDeferred) {
  recordAndAnswer(selector, fmt::format("{} {} {} {} {} {} {}", frame.origin.x, frame.origin.y,
                                        frame.size.width, frame.size.height, style, backing, isDeferred));
  return self;
}

objc::Id color(objc::Id, objc::Sel selector, double red, double green, double blue, double alpha) {
  return recordAndAnswer(selector, fmt::format("{} {} {} {}", red, green, blue, alpha));
}

// One argument more than there are registers for.
void addObserver(objc::Id, objc::Sel selector, objc::Id observer, objc::Sel action, objc::Id name,
                 objc::Id object, objc::UInteger behaviour) {
  recordAndAnswer(selector, fmt::format("{} {} {} {} {}", shown(observer), sel_getName(action), shown(name),
                                        shown(object), behaviour));
}

objc::Rect frame(objc::Id, objc::Sel selector) {
  recordAndAnswer(selector);
  return {{1, 2}, {3, 4}};
}

objc::Range range(objc::Id, objc::Sel selector) {
  recordAndAnswer(selector);
  return {5, 6};
}

objc::Id messageWithoutArguments(objc::Id, objc::Sel selector) { return recordAndAnswer(selector); }

double doubleValue(objc::Id, objc::Sel selector) {
  recordAndAnswer(selector);
  return 0.5;
}

Class receiverClass() {
  static const Class made =
      StandInClass("StandInMessageReceiver")
          .classMethod("colorWithCalibratedRed:green:blue:alpha:", "@@:dddd", color)
          .method("initWithContentRect:styleMask:backing:defer:", "@@:{_NSRect={_NSPoint=dd}{_NSSize=dd}}QQC",
                  initWindow)
          .method("addObserver:selector:name:object:suspensionBehavior:", "v@:@:@@Q", addObserver)
          .method("frame", "{_NSRect={_NSPoint=dd}{_NSSize=dd}}@:", frame)
          .method("range", "{_NSRange=QQ}@:", range)
          .method("doubleValue", "d@:", doubleValue)
          .method("name", "@@:", messageWithoutArguments)
          .method("reason", "@@:", messageWithoutArguments)
          .registerClass();
  return made;
}

class MacMessages : public testing::Test {
 protected:
  MacMessages() {
    karno_messages_sent = 0;
    karno_messages_sent_stret = 0;
  }

  const objc::AutoreleasePool pool_;
  StandIns standIns_;
  const objc::Object receiver_ = instanceOf(receiverClass());
};

TEST_F(MacMessages, CarryEveryKindOfArgument) {
  objc::send(receiver_, "initWithContentRect:styleMask:backing:defer:", objc::Rect{{1, 2}, {3, 4}},
             objc::UInteger{15}, objc::UInteger{2}, true);
  objc::send(receiverClass(), "colorWithCalibratedRed:green:blue:alpha:", 0.1, 0.2, 0.3, 1.0);
  const objc::Sel action = sel_registerName("karnoCall:");
  objc::send<void>(receiver_,
                   "addObserver:selector:name:object:suspensionBehavior:", objc::string("observer"), action,
                   objc::string("name"), nullptr, objc::UInteger{4});

  EXPECT_THAT(
      standIns_.messages(),
      ElementsAre("initWithContentRect:styleMask:backing:defer: 1 2 3 4 15 2 1",
                  "colorWithCalibratedRed:green:blue:alpha: 0.1 0.2 0.3 1",
                  "addObserver:selector:name:object:suspensionBehavior: observer karnoCall: name nil 4"));
}

TEST_F(MacMessages, WithAResultInRegistersTakeTheUsualFunction) {
  const int before = karno_messages_sent;

  const auto range = objc::send<objc::Range>(receiver_, "range");
  const auto number = objc::send<double>(receiver_, "doubleValue");

  EXPECT_EQ(range.location, 5U);
  EXPECT_EQ(range.length, 6U);
  EXPECT_EQ(number, 0.5);
  EXPECT_EQ(karno_messages_sent, before + 2);
  EXPECT_EQ(karno_messages_sent_stret, 0);
}

TEST_F(MacMessages, WithAResultInMemoryTakeTheOtherFunction) {
  const int before = karno_messages_sent;

  const auto frame = objc::send<objc::Rect>(receiver_, "frame");

  EXPECT_EQ(frame.origin.x, 1);
  EXPECT_EQ(frame.origin.y, 2);
  EXPECT_EQ(frame.size.width, 3);
  EXPECT_EQ(frame.size.height, 4);
  EXPECT_EQ(karno_messages_sent, before);
  EXPECT_EQ(karno_messages_sent_stret, 1);
}

TEST_F(MacMessages, ToNilAnswerZeroOfAnyKindAndAreNotSent) {
  const int before = karno_messages_sent;
  const objc::Id nobody = nullptr;

  EXPECT_EQ(objc::send(nobody, "domain"), nullptr);
  EXPECT_EQ(objc::send<objc::Rect>(nobody, "frame").size.width, 0);
  EXPECT_EQ(objc::send<double>(nobody, "doubleValue"), 0);
  EXPECT_FALSE(objc::send<bool>(nobody, "isVisible"));
  EXPECT_EQ(karno_messages_sent, before);
  EXPECT_EQ(karno_messages_sent_stret, 0);
}

TEST_F(MacMessages, LetThroughWhatIsRaised) {
  standIns_.raise();

  const auto answer = objc::guarded("asking for a frame",
                                    [this] { return objc::send<objc::Rect>(receiver_, "frame").origin.x; });

  ASSERT_FALSE(answer);
  EXPECT_EQ(answer.error().localizedDescription(), "asking for a frame: raised by a stand-in");
}

TEST_F(MacMessages, HaveNameAndReasonNotedOfWhatIsAboutToBeRaised) {
  objc::startRuntime(0, nullptr);
  standIns_.answer("name", objc::string("NSRangeException"));
  standIns_.answer("reason", objc::string("too far"));

  const objc::Id passedOn = installedPreprocessor()(receiver_.get());

  EXPECT_EQ(passedOn, receiver_.get());
  EXPECT_EQ(objc::takeRaised(), "NSRangeException: too far");
  EXPECT_EQ(objc::takeRaised(), "");
}

TEST_F(MacMessages, HaveTheNameAloneNotedOfWhatGivesNoReason) {
  objc::startRuntime(0, nullptr);
  standIns_.answer("name", objc::string("NSGenericException"));

  installedPreprocessor()(receiver_.get());

  EXPECT_EQ(objc::takeRaised(), "NSGenericException");
}

TEST_F(MacMessages, LetThroughAnExceptionOfThePlatform) {
  const objc::Object empty = objc::make("NSMutableArray");

  const auto answer = objc::guarded(
      "looking", [&empty] { return objc::send(empty, "objectAtIndex:", objc::UInteger{3}) != nullptr; });

  ASSERT_FALSE(answer);
  EXPECT_EQ(answer.error().localizedDescription(), "looking: an exception was raised");
}

}  // namespace
}  // namespace karno::platform::trial
