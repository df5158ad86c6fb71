#include "platform/cocoa/runtime/class_builder.h"

#include <gtest/gtest.h>
#include <objc/runtime.h>

#include <stdexcept>

#include "../../support/standard_error_capture.h"
#include "platform/cocoa/runtime/callback.h"
#include "platform/cocoa/runtime/strings.h"

namespace karno::platform::objc {
namespace {

using test::StandardErrorCapture;

UInteger throwInLength(Id) { throw std::runtime_error("no length"); }
long long raiseInLongLongValue(Id) {
  send(make("NSMutableArray"), "objectAtIndex:", UInteger{7});
  return 5;
}
void addToState(Id self, Id addend) {
  *static_cast<long long*>(stateOf(self)) += send<long long>(addend, "longLongValue");
}
Boolean isGreater(Id, double left, int right, Integer third, UInteger fourth, Sel, Class) {
  return left > right && third == -1 && fourth == 1;
}

Class testClass() {
  static const Class made = ClassBuilder("KarnoTestBuilt", classNamed("NSObject"))
                                .state()
                                .method<addToState>("addObject:")
                                .method<isGreater>("isGreater:than:third:fourth:selector:class:")
                                .registerClass();
  return made;
}

// Each is asked for one thing, as an object of one class would be.
Class throwingClass() {
  static const Class made = ClassBuilder("KarnoTestThrowing", classNamed("NSObject"))
                                .method<throwInLength>("length")
                                .registerClass();
  return made;
}
Class raisingClass() {
  static const Class made = ClassBuilder("KarnoTestRaising", classNamed("NSObject"))
                                .method<raiseInLongLongValue>("longLongValue")
                                .registerClass();
  return made;
}

Object makeInstance(Class cls = testClass()) { return Object::adopting(send(send(cls, "alloc"), "init")); }

TEST(ClassBuilder, AMethodReachesTheStateOfItsInstance) {
  const AutoreleasePool pool;
  const Object object = makeInstance();
  long long sum = 1;
  setState(object.get(), &sum);

  send<void>(object, "addObject:", send(classNamed("NSNumber"), "numberWithLongLong:", 41LL));

  EXPECT_EQ(sum, 42);
}

TEST(ClassBuilder, ANewInstanceHasNoState) { EXPECT_EQ(stateOf(makeInstance().get()), nullptr); }

TEST(ClassBuilder, AThrownExceptionIsLoggedAndTheMessageAnswersZero) {
  const StandardErrorCapture errors;

  const auto length = send<UInteger>(makeInstance(throwingClass()), "length");

  EXPECT_EQ(length, 0U);
  EXPECT_EQ(errors.text(), "length: no length\n");
}

TEST(ClassBuilder, ARaisedExceptionIsLoggedAndTheMessageAnswersZero) {
  const AutoreleasePool pool;
  const StandardErrorCapture errors;

  const auto value = send<long long>(makeInstance(raisingClass()), "longLongValue");

  EXPECT_EQ(value, 0);
  EXPECT_EQ(errors.text(), "longLongValue: NSRangeException: Index 7 is out of range 0 (in 'objectAtIndex:')\n");
}

TEST(ClassBuilder, MethodsCarryTheEncodingOfTheirTypes) {
  const Sel selector = sel_registerName("isGreater:than:third:fourth:selector:class:");

  EXPECT_STREQ(method_getTypeEncoding(class_getInstanceMethod(testClass(), selector)), "C@:diqQ:#");
}

TEST(ClassBuilder, AnExistingClassOfThatNameIsAnsweredUnchanged) {
  const Class existing = testClass();

  EXPECT_EQ(ClassBuilder("KarnoTestBuilt", classNamed("NSObject")).state().registerClass(), existing);
}

TEST(ClassBuilder, AdoptsTheProtocolsThatAreThere) {
  const Class made = ClassBuilder("KarnoTestAdopting", classNamed("NSObject"))
                         .adopt("NSCopying")
                         .adopt("KarnoTestProtocolThatIsNowhere")
                         .registerClass();

  EXPECT_TRUE(class_conformsToProtocol(made, objc_getProtocol("NSCopying")));
  EXPECT_EQ(objc_getProtocol("KarnoTestProtocolThatIsNowhere"), nullptr);
}

TEST(Guarded, WorkThatSucceedsGivesItsResult) {
  EXPECT_EQ(guarded("count", [] { return 3; }).value(), 3);
  EXPECT_FALSE(guarded("nothing", [] {}).has_value());
}

TEST(Guarded, AThrownExceptionBecomesAnErrorWithItsText) {
  const auto failure = guarded("count", []() -> int { throw std::runtime_error("no fingers"); });

  EXPECT_EQ(failure.error().domain(), kExceptionErrorDomain);
  EXPECT_EQ(failure.error().code(), kStandardExceptionCode);
  EXPECT_EQ(failure.error().localizedDescription(), "count: no fingers");
}

TEST(Guarded, ARaisedExceptionBecomesAnError) {
  const AutoreleasePool pool;

  const auto failure = guarded("look", [] { send(make("NSMutableArray"), "objectAtIndex:", UInteger{7}); });

  EXPECT_EQ(failure->code(), kForeignExceptionCode);
  EXPECT_EQ(failure->localizedDescription(), "look: NSRangeException: Index 7 is out of range 0 (in 'objectAtIndex:')");
}

TEST(Callback, CallsItsFunctionWithTheArgument) {
  const AutoreleasePool pool;
  std::string heard;
  const cocoa::Callback callback([&heard](Id argument) { heard = text(argument); });

  const Object target = callback.target();
  const Object sent = string("hello");
  reinterpret_cast<void (*)(Id, Sel, Id)>(detail::messageFunction(
      target.get(), cocoa::Callback::action(), false))(target.get(), cocoa::Callback::action(), sent.get());

  EXPECT_EQ(heard, "hello");
}

TEST(Callback, ItsTargetOutlivesItAndDoesNothing) {
  int calls = 0;
  Object target;
  {
    const cocoa::Callback callback([&calls](Id) { ++calls; });
    target = callback.target();
  }

  reinterpret_cast<void (*)(Id, Sel, Id)>(detail::messageFunction(
      target.get(), cocoa::Callback::action(), false))(target.get(), cocoa::Callback::action(), nullptr);

  EXPECT_EQ(calls, 0);
}

}  // namespace
}  // namespace karno::platform::objc
