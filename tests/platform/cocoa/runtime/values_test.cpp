#include "platform/cocoa/runtime/values.h"

#include <gtest/gtest.h>

#include <chrono>
#include <limits>

#include "../foundation_objects.h"
#include "platform/cocoa/runtime/strings.h"

namespace karno::platform::cocoa {
namespace {

using namespace std::chrono_literals;

std::optional<Value> thereAndBack(const Value& value) {
  const objc::AutoreleasePool pool;
  return valueOf(objectOf(value).get());
}

Value nested(int levels) {
  Value value("core");
  for (int level = 0; level < levels; ++level) {
    value = level % 2 == 0 ? Value(Value::Array{value}) : Value(Value::Dictionary{{"in", value}});
  }
  return value;
}

TEST(Values, KeepBooleansApartFromNumbers) {
  EXPECT_EQ(thereAndBack(Value(true)), Value(true));
  EXPECT_EQ(thereAndBack(Value(false)), Value(false));
  EXPECT_EQ(thereAndBack(Value(1)), Value(1));
  EXPECT_EQ(thereAndBack(Value(0)), Value(0));
}

TEST(Values, KeepIntegersApartFromFloatingPoint) {
  EXPECT_EQ(thereAndBack(Value(1.0)), Value(1.0));
  EXPECT_EQ(thereAndBack(Value(std::numeric_limits<std::int64_t>::min())),
            Value(std::numeric_limits<std::int64_t>::min()));
  EXPECT_EQ(thereAndBack(Value(std::numeric_limits<std::int64_t>::max())),
            Value(std::numeric_limits<std::int64_t>::max()));
}

TEST(Values, KeepTextsDatesAndData) {
  EXPECT_EQ(thereAndBack(Value("Größe \U0001F600")), Value("Größe \U0001F600"));
  EXPECT_EQ(thereAndBack(Value(Date(1'700'000'000s))), Value(Date(1'700'000'000s)));
  EXPECT_EQ(thereAndBack(Value(Value::Data{std::byte{0}, std::byte{255}})),
            Value(Value::Data{std::byte{0}, std::byte{255}}));
  EXPECT_EQ(thereAndBack(Value(Value::Data{})), Value(Value::Data{}));
}

TEST(Values, KeepContainersInOneAnother) {
  const Value value(
      Value::Dictionary{{"", Value(Value::Array{})},
                        {"list", Value(Value::Array{1, "two", Value(Value::Dictionary{{"k", true}})})}});

  EXPECT_EQ(thereAndBack(value), value);
}

TEST(Values, ANumberTooLargeForSixtyFourBitsWithSignBecomesADouble) {
  const objc::AutoreleasePool pool;

  EXPECT_EQ(valueOf(trial::unsignedNumber(9'223'372'036'854'775'807U)),
            Value(std::int64_t{9'223'372'036'854'775'807}));
  EXPECT_EQ(valueOf(trial::unsignedNumber(9'223'372'036'854'775'808U)), Value(9'223'372'036'854'775'808.0));
}

TEST(Values, ADateBeyondTheRangeBecomesTheNearestOne) {
  const objc::AutoreleasePool pool;

  EXPECT_EQ(valueOf(objc::send(objc::classNamed("NSDate"), "dateWithTimeIntervalSince1970:", 1e30)),
            Value(Date::max()));
  EXPECT_EQ(valueOf(objc::send(objc::classNamed("NSDate"), "dateWithTimeIntervalSince1970:", -1e30)),
            Value(Date::min()));
}

TEST(Values, OtherObjectsAreAbsent) {
  const objc::AutoreleasePool pool;

  EXPECT_EQ(valueOf(nullptr), std::nullopt);
  EXPECT_EQ(valueOf(objc::make("NSObject").get()), std::nullopt);
}

TEST(Values, AContainerWithAnotherObjectInItIsAbsent) {
  const objc::AutoreleasePool pool;
  const objc::Object array = objc::make("NSMutableArray");
  objc::send<void>(array, "addObject:", objc::string("text"));
  objc::send<void>(array, "addObject:", objc::make("NSObject"));

  EXPECT_EQ(valueOf(array.get()), std::nullopt);
}

TEST(Values, ADictionaryWithANumberForAKeyIsAbsent) {
  const objc::AutoreleasePool pool;
  const objc::Object dictionary = objc::make("NSMutableDictionary");
  objc::send<void>(dictionary, "setObject:forKey:", objc::string("text"), trial::unsignedNumber(1));

  EXPECT_EQ(valueOf(dictionary.get()), std::nullopt);
}

TEST(Values, SixtyFourLevelsAreTheLimitBothWays) {
  const objc::AutoreleasePool pool;
  const objc::Object deepest = objectOf(nested(64));
  const objc::Object tooDeep = objc::make("NSMutableArray");
  objc::send<void>(tooDeep, "addObject:", deepest);

  EXPECT_EQ(valueOf(deepest.get()), nested(64));
  EXPECT_EQ(valueOf(tooDeep.get()), std::nullopt);
  EXPECT_FALSE(objectOf(nested(65)));
}

TEST(Values, AnArrayThatHoldsItselfIsAbsent) {
  const objc::AutoreleasePool pool;
  const objc::Id array = objc::send(objc::send(objc::classNamed("NSMutableArray"), "alloc"), "init");
  objc::send<void>(array, "addObject:", array);

  EXPECT_EQ(valueOf(array), std::nullopt);

  trial::removeAllObjects(array);
  objc::send<void>(array, "release");
}

}  // namespace
}  // namespace karno::platform::cocoa
