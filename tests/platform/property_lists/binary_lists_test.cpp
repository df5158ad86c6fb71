#include <gtest/gtest.h>

#include <chrono>
#include <vector>

#include "../cocoa/foundation_objects.h"
#include "../support/binary_list_builder.h"
#include "platform/property_lists/property_lists.h"

namespace karno::platform {
namespace {

using karno::test::BinaryListBuilder;

constexpr char kDictionaryOfOne = '\xD1';
constexpr char kArrayOfOne = '\xA1';
constexpr char kArrayOfTwo = '\xA2';

std::string textObject(const std::string& text) { return static_cast<char>(0x50 + text.size()) + text; }

// Each array holds the next one twice, so that it unfolds to 2^levels elements.
std::string doublingArrays(int levels) {
  BinaryListBuilder list;
  for (int level = 0; level < levels; ++level) {
    list.references(kArrayOfTwo, {level + 1, level + 1});
  }
  return list.object(textObject("x")).build();
}

std::string chainOfArrays(int levels) {
  BinaryListBuilder list;
  for (int level = 0; level < levels; ++level) {
    list.references(kArrayOfOne, {level + 1});
  }
  return list.object(textObject("x")).build();
}

// Data of 1 MiB, a hundred times in one array.
std::string repeatedData() {
  BinaryListBuilder list;
  std::string array = {'\xAF', '\x10', 100};
  for (int count = 0; count < 100; ++count) {
    array += std::string("\0\1", 2);
  }
  return list.object(array)
      .object(std::string("\x4F\x12\x00\x10\x00\x00", 6) + std::string(1 << 20, 'd'))
      .build();
}

std::string withTrailer(std::uint8_t offsetBytes, std::uint8_t referenceBytes, std::uint64_t rootIndex) {
  BinaryListBuilder list;
  list.offsetBytes = offsetBytes;
  list.referenceBytes = referenceBytes;
  list.rootIndex = rootIndex;
  return list.object(textObject("x")).build();
}

TEST(BinaryLists, ASoundListIsRead) {
  const std::string bytes = BinaryListBuilder()
                                .references(kDictionaryOfOne, {1, 2})
                                .object(textObject("key"))
                                .object("\x10\x07")
                                .build();

  EXPECT_EQ(parsePropertyList(bytes).value(), Value(Value::Dictionary{{"key", 7}}));
}

TEST(BinaryLists, AnObjectMayBeSharedWithinReason) {
  EXPECT_EQ(parsePropertyList(doublingArrays(2)).value(),
            Value(Value::Array{Value(Value::Array{"x", "x"}), Value(Value::Array{"x", "x"})}));
}

class BinaryListWidths : public testing::TestWithParam<int> {};

TEST_P(BinaryListWidths, AreRead) {
  BinaryListBuilder list;
  list.offsetBytes = static_cast<std::uint8_t>(GetParam());
  list.referenceBytes = static_cast<std::uint8_t>(GetParam());
  list.references(kArrayOfTwo, {1, 2}).object(textObject("x")).object("\x09");

  EXPECT_EQ(parsePropertyList(list.build()).value(), Value(Value::Array{"x", true}));
}

INSTANTIATE_TEST_SUITE_P(Each, BinaryListWidths, testing::Values(1, 2, 3, 4));

TEST(BinaryLists, LargeOnesAreRead) {
  const Value large(Value::Dictionary{{"data", Value(Value::Data(100'000, std::byte{7}))},
                                      {"list", Value(Value::Array(5'000, Value(1.5)))},
                                      {"text", Value(std::string(70'000, 'x'))}});

  EXPECT_EQ(parsePropertyList(trial::binaryList(large)).value(), large);
}

TEST(BinaryLists, EveryKindMayBeTheLastObject) {
  EXPECT_EQ(parsePropertyList(BinaryListBuilder().object("\x09").build()).value(), Value(true));
  EXPECT_EQ(parsePropertyList(BinaryListBuilder().object("\x10\x07").build()).value(), Value(7));
  EXPECT_EQ(
      parsePropertyList(BinaryListBuilder().object("\x23\x40\x04" + std::string(6, '\0')).build()).value(),
      Value(2.5));
  EXPECT_EQ(parsePropertyList(BinaryListBuilder().object("\x33" + std::string(8, '\0')).build()).value(),
            Value(Date(std::chrono::seconds(978'307'200))));
  EXPECT_EQ(parsePropertyList(BinaryListBuilder().object("\x41z").build()).value(),
            Value(Value::Data{std::byte{'z'}}));
  EXPECT_EQ(parsePropertyList(BinaryListBuilder().object("\x61\x20\xAC").build()).value(), Value("\u20AC"));
}

// What a list that is this object says.
Value readObject(const std::string& bytes) {
  const auto list = parsePropertyList(BinaryListBuilder().object(bytes).build());
  return list ? list.value() : Value(list.error().localizedDescription());
}

TEST(BinaryLists, IntegersHaveASignFromEightBytesOn) {
  const std::string ones(8, '\xFF');
  const std::string zeros(8, '\0');

  EXPECT_EQ(readObject("\x10\xFF"), Value(255));
  EXPECT_EQ(readObject("\x11\xFF\xFE"), Value(65'534));
  EXPECT_EQ(readObject("\x12\xFF\xFF\xFF\xFD"), Value(std::int64_t{4'294'967'293}));
  EXPECT_EQ(readObject("\x13" + ones), Value(-1));
  EXPECT_EQ(readObject("\x14" + ones + ones), Value(-1));
  EXPECT_EQ(readObject("\x14" + zeros + "\x01" + zeros.substr(1)), Value(std::int64_t{1} << 56));
}

TEST(BinaryLists, IntegersThatOnlyFitWithoutASignAreReals) {
  EXPECT_EQ(readObject("\x14" + std::string(8, '\0') + std::string(8, '\xFF')),
            Value(18'446'744'073'709'551'615.0));
}

TEST(BinaryLists, RealsMayHaveFourBytes) {
  EXPECT_EQ(readObject(std::string("\x22\xBF\xC0\0\0", 5)), Value(-1.5));
}

TEST(BinaryLists, DatesBeyondTheLastAreTheLast) {
  EXPECT_EQ(readObject("\x33\x7E" + std::string(7, '\0')), Value(Date::max()));
  EXPECT_EQ(readObject("\x33\xFE" + std::string(7, '\0')), Value(Date::min()));
}

TEST(BinaryLists, HalfACharacterBecomesU_FFFD) {
  EXPECT_EQ(readObject(std::string("\x62\xD8\x3D\0a", 5)), Value("\uFFFDa"));
}

TEST(BinaryLists, OfAKeyThatIsThereTwiceTheLastCounts) {
  const std::string bytes = BinaryListBuilder()
                                .references('\xD2', {1, 1, 2, 3})
                                .object(textObject("key"))
                                .object("\x10\x07")
                                .object("\x10\x08")
                                .build();

  EXPECT_EQ(parsePropertyList(bytes).value(), Value(Value::Dictionary{{"key", 8}}));
}

TEST(BinaryLists, EveryTruncationOfASoundListIsAnErrorOrAValue) {
  const std::string sound =
      trial::binaryList(Value(Value::Dictionary{{"a", Value(Value::Array{1, 2.5, true, "text \u20AC"})},
                                                {"d", Value(Value::Data(300, std::byte{1}))}}));

  for (std::size_t length = 0; length < sound.size(); ++length) {
    EXPECT_FALSE(parsePropertyList(std::string_view(sound).substr(0, length))) << "length " << length;
  }
}

struct DamagedBinary {
  std::string name;
  std::string bytes;
  std::string reason;
};

class DamagedBinaryList : public testing::TestWithParam<DamagedBinary> {};

TEST_P(DamagedBinaryList, IsAnError) {
  const auto result = parsePropertyList(GetParam().bytes);

  ASSERT_FALSE(result);
  EXPECT_EQ(result.error().localizedDescription(),
            "The property list cannot be read: " + GetParam().reason + ".");
}

const std::vector<DamagedBinary> kDamagedBinary = {
    {"OnlyTheMagic", "bplist00", "it is too short"},
    {"TrailerOnly", "bplist00" + std::string(32, '\0'), "its trailer names odd widths"},
    {"OddOffsetWidth", withTrailer(5, 2, 0), "its trailer names odd widths"},
    {"NoOffsetWidth", withTrailer(0, 2, 0), "its trailer names odd widths"},
    {"HugeReferenceWidth", withTrailer(2, 255, 0), "its trailer names odd widths"},
    {"RootOutside", withTrailer(2, 2, 1), "its root object lies outside"},
    {"HugeRoot", withTrailer(2, 2, ~std::uint64_t{0}), "its root object lies outside"},
    {"NoObjects", BinaryListBuilder().object("\x09").buildWith(0, {}), "its offset table is too short"},
    {"HugeObjectCount", BinaryListBuilder().object("\x09").buildWith(~std::uint64_t{0}, {}),
     "its offset table is too short"},
    {"ObjectCountThatOverflows", BinaryListBuilder().object("\x09").buildWith(std::uint64_t{1} << 63, {}),
     "its offset table is too short"},
    {"OffsetTableOutside", BinaryListBuilder().object("\x09").buildWith(1, {1'000'000}),
     "its offset table lies outside"},
    {"OffsetTableAtTheEndOfNumbers", BinaryListBuilder().object("\x09").buildWith(1, {~std::uint64_t{0}}),
     "its offset table lies outside"},
    {"OffsetTableInTheMagic", BinaryListBuilder().object("\x09").buildWith(1, {2}),
     "its offset table lies outside"},
    {"ObjectInTheMagic", BinaryListBuilder().object(std::string("\0\0\0", 3)).buildWith(1, {9}),
     "an object lies outside"},
    {"ReferenceToNoObject", BinaryListBuilder().references(kArrayOfOne, {7}).build(),
     "a reference points to no object"},
    {"ArrayThatHoldsItself", BinaryListBuilder().references(kArrayOfOne, {0}).build(),
     "it is nested too deeply"},
    {"DictionaryThatHoldsItself",
     BinaryListBuilder().references(kDictionaryOfOne, {1, 0}).object(textObject("k")).build(),
     "it is nested too deeply"},
    {"DictionaryThatIsItsKey",
     BinaryListBuilder().references(kDictionaryOfOne, {0, 1}).object("\x09").build(),
     "it is nested too deeply"},
    {"NumberForAKey", BinaryListBuilder().references(kDictionaryOfOne, {1, 1}).object("\x10\x07").build(),
     "a key is no text"},
    {"SixtyFiveLevels", chainOfArrays(65), "it is nested too deeply"},
    {"TwentyThousandLevels", chainOfArrays(20'000), "it is nested too deeply"},
    {"UnfoldsToMillions", doublingArrays(40), "it unfolds to too much"},
    {"UnfoldsToAHundredMegabytes", repeatedData(), "it unfolds to too much"},
    {"ArrayLongerThanTheFile", BinaryListBuilder().object("\xAE").build(), "an object lies outside"},
    {"TextLongerThanTheFile", BinaryListBuilder().object("\x5E").build(), "an object lies outside"},
    {"HugeCount", BinaryListBuilder().object("\x4F\x13\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF").build(),
     "an object lies outside"},
    {"HugeDictionary", BinaryListBuilder().object("\xDF\x13\x80" + std::string(7, '\0')).build(),
     "an object lies outside"},
    {"CountThatIsNoInteger", BinaryListBuilder().object("\x5F\x23").build(), "a count is damaged"},
    {"CountOfSixteenBytes", BinaryListBuilder().object("\x5F\x14" + std::string(16, '\0')).build(),
     "a count is damaged"},
    {"CountOutside", BinaryListBuilder().object("\x5F").build(), "an object lies outside"},
    {"HighBytesInAscii", BinaryListBuilder().object("\x51\xE9").build(), "an ASCII text is none"},
    {"WideInteger", BinaryListBuilder().object("\x15" + std::string(32, '\0')).build(),
     "an integer is too wide"},
    {"HugeInteger", BinaryListBuilder().object("\x14\x01" + std::string(15, '\0')).build(),
     "an integer is too wide"},
    {"IntegerOutside", BinaryListBuilder().object("\x13").build(), "an object lies outside"},
    {"OddReal", BinaryListBuilder().object("\x21" + std::string(4, '\0')).build(),
     "a number has an odd width"},
    {"OddDate", BinaryListBuilder().object("\x32" + std::string(4, '\0')).build(), "a date has an odd width"},
    {"DateThatIsNoNumber", BinaryListBuilder().object("\x33\x7F\xF8" + std::string(6, '\0')).build(),
     "it holds what no property list has"},
    {"Null", BinaryListBuilder().object(std::string(1, '\0')).build(),
     "it holds an object of an unknown kind"},
    {"Set", BinaryListBuilder().object("\xC0").build(), "it holds an object of an unknown kind"},
    {"ArchiveReference", BinaryListBuilder().object(std::string("\x80\0", 2)).build(),
     "it holds an archive's reference"},
};

INSTANTIATE_TEST_SUITE_P(Each, DamagedBinaryList, testing::ValuesIn(kDamagedBinary),
                         [](const auto& each) { return each.param.name; });

}  // namespace
}  // namespace karno::platform
