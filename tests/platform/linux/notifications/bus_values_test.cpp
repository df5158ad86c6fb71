#include "platform/linux/notifications/bus_values.h"

#include <gtest/gtest.h>
#include <sdbus-c++/sdbus-c++.h>

#include <chrono>
#include <limits>

namespace karno::platform {
namespace {

Value::Dictionary thereAndBack(const Value::Dictionary& values) {
  const auto bus = busDictionaryFromValues(values);
  return bus ? valuesFromBusDictionary(*bus) : Value::Dictionary();
}

Value nested(int levels) {
  Value value = "innermost";
  for (int level = 0; level < levels; ++level) value = Value::Array{value};
  return value;
}

Value::Dictionary received(const sdbus::Variant& variant) {
  return valuesFromBusDictionary({{"key", variant}});
}

TEST(BusValues, KeepEveryKindOfValueOnTheWayThereAndBack) {
  const Value::Dictionary values = {
      {"truth", true},
      {"integer", std::numeric_limits<std::int64_t>::min()},
      {"number", 0.1},
      {"text", "Grüße, 世界"},
      {"empty text", ""},
      {"date", Date(std::chrono::milliseconds(1'700'000'000'500))},
      {"data", Value::Data{std::byte{0}, std::byte{255}}},
      {"empty data", Value::Data{}},
      {"array", Value::Array{1, "two", false, Value::Array{}}},
      {"dictionary", Value::Dictionary{{"inner", Value::Dictionary{{"innermost", 3}}}}},
      {"empty dictionary", Value::Dictionary{}},
  };

  EXPECT_EQ(thereAndBack(values), values);
}

TEST(BusValues, AcceptEveryIntegerType) {
  EXPECT_EQ(received(sdbus::Variant(std::uint8_t{200})), (Value::Dictionary{{"key", 200}}));
  EXPECT_EQ(received(sdbus::Variant(std::int16_t{-5})), (Value::Dictionary{{"key", -5}}));
  EXPECT_EQ(received(sdbus::Variant(std::uint16_t{60'000})), (Value::Dictionary{{"key", 60'000}}));
  EXPECT_EQ(received(sdbus::Variant(std::int32_t{-7})), (Value::Dictionary{{"key", -7}}));
  EXPECT_EQ(received(sdbus::Variant(std::uint32_t{4'000'000'000})),
            (Value::Dictionary{{"key", std::int64_t{4'000'000'000}}}));
  EXPECT_EQ(received(sdbus::Variant(std::uint64_t{9})), (Value::Dictionary{{"key", 9}}));
}

TEST(BusValues, AcceptArraysAndDictionariesOfOneType) {
  EXPECT_EQ(received(sdbus::Variant(std::vector<std::string>{"a", "b"})),
            (Value::Dictionary{{"key", Value::Array{"a", "b"}}}));
  EXPECT_EQ(received(sdbus::Variant(std::vector<std::int32_t>{1, 2})),
            (Value::Dictionary{{"key", Value::Array{1, 2}}}));
  EXPECT_EQ(received(sdbus::Variant(std::map<std::string, std::string>{{"a", "b"}})),
            (Value::Dictionary{{"key", Value::Dictionary{{"a", "b"}}}}));
  EXPECT_EQ(received(sdbus::Variant(sdbus::ObjectPath("/a/b"))), (Value::Dictionary{{"key", "/a/b"}}));
}

TEST(BusValues, LeaveOutWhatNoValueCanHold) {
  const BusDictionary bus = {
      {"struct", sdbus::Variant(sdbus::Struct<std::int32_t, std::string>(1, "x"))},
      {"number keys", sdbus::Variant(std::map<std::int32_t, std::string>{{1, "x"}})},
      {"too large", sdbus::Variant(std::numeric_limits<std::uint64_t>::max())},
      {"no moment", sdbus::Variant(sdbus::Struct<double>(std::numeric_limits<double>::quiet_NaN()))},
      {"too late", sdbus::Variant(sdbus::Struct<double>(1e300))},
      {"message", sdbus::Variant("user-selected-quit")},
  };

  EXPECT_EQ(valuesFromBusDictionary(bus), (Value::Dictionary{{"message", "user-selected-quit"}}));
}

TEST(BusValues, LeaveOutElementsThatNoValueCanHoldAndKeepTheirNeighbours) {
  const std::vector<sdbus::Variant> mixed = {
      sdbus::Variant(1), sdbus::Variant(sdbus::Struct<std::int32_t>(2)), sdbus::Variant(3)};

  EXPECT_EQ(received(sdbus::Variant(mixed)), (Value::Dictionary{{"key", Value::Array{1, 3}}}));
}

TEST(BusValues, CarryAsManyLevelsAsTheLimitAllows) {
  const Value::Dictionary deepest = {{"key", nested(kBusValueDepthMax - 1)}};
  const Value::Dictionary tooDeep = {{"key", nested(kBusValueDepthMax)}};

  EXPECT_EQ(thereAndBack(deepest), deepest);
  EXPECT_FALSE(busDictionaryFromValues(tooDeep));
}

TEST(BusValues, EndAtTheLimitWhenSomebodyElseSendsMoreLevels) {
  sdbus::Variant bus("innermost");
  for (int level = 0; level < 18; ++level) bus = sdbus::Variant(std::vector<sdbus::Variant>{bus});

  const Value::Dictionary values = received(bus);

  EXPECT_EQ(values.at("key").description().find("innermost"), std::string::npos);
}

TEST(BusValues, RefuseTextsThatTheBusDoesNotTake) {
  EXPECT_FALSE(busDictionaryFromValues({{"key", std::string("a\0b", 3)}}));
  EXPECT_FALSE(busDictionaryFromValues({{"key", "caf\xE9"}}));
  EXPECT_FALSE(busDictionaryFromValues({{"\xFF", "text"}}));
  EXPECT_FALSE(busDictionaryFromValues({{"surrogate", "\xED\xA0\x80"}}));
  EXPECT_FALSE(busDictionaryFromValues({{"overlong", "\xC0\x80"}}));
  EXPECT_FALSE(busDictionaryFromValues({{"cut off", "\xE2\x82"}}));
}

}  // namespace
}  // namespace karno::platform
