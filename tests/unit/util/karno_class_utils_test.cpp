#include "util/karno_class_utils.h"

#include <gmock/gmock.h>

#include "elements_are.h"
#include "fake_clock.h"

namespace karno {
namespace {

using karno::test::ElementsAre;
using platform::Value;
using ::testing::IsEmpty;

// The classes that the item belongs to.
std::vector<ValueClass> classesOf(const std::optional<Value>& item) {
  std::vector<ValueClass> classes;
  for (const ValueClass each : {ValueClass::Number, ValueClass::String, ValueClass::Date, ValueClass::Data,
                                ValueClass::Array, ValueClass::Dictionary}) {
    if (KarnoClassUtils::isKindOfClassForItem(item, each)) classes.push_back(each);
  }
  return classes;
}

TEST(KarnoClassUtils, SaysNoForNothingWhateverTheClass) { EXPECT_THAT(classesOf(std::nullopt), IsEmpty()); }

TEST(KarnoClassUtils, TakesABooleanForANumber) {
  EXPECT_THAT(classesOf(true), ElementsAre(ValueClass::Number));
}

TEST(KarnoClassUtils, TellsEveryClassFromTheOthers) {
  EXPECT_THAT(classesOf(7), ElementsAre(ValueClass::Number));
  EXPECT_THAT(classesOf(7.5), ElementsAre(ValueClass::Number));
  EXPECT_THAT(classesOf("7"), ElementsAre(ValueClass::String));
  EXPECT_THAT(classesOf(test::kStartOfTest), ElementsAre(ValueClass::Date));
  EXPECT_THAT(classesOf(Value::Data{}), ElementsAre(ValueClass::Data));
  EXPECT_THAT(classesOf(Value::Array{}), ElementsAre(ValueClass::Array));
  EXPECT_THAT(classesOf(Value::Dictionary{}), ElementsAre(ValueClass::Dictionary));
}

}  // namespace
}  // namespace karno
