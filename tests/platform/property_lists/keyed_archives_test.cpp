#include <gtest/gtest.h>

#include <chrono>
#include <vector>

#include "../cocoa/foundation_objects.h"
#include "platform/cocoa/runtime/strings.h"
#include "platform/property_lists/property_lists.h"

namespace karno::platform {
namespace {

using namespace std::chrono_literals;

std::string failureOf(std::string_view bytes) {
  const auto result = unarchiveDictionary(bytes);
  return result ? "none" : result.error().localizedDescription();
}

const Value::Dictionary kContents = {
    {"array", Value(Value::Array{1, "two", Value(Value::Dictionary{{"k", false}})})},
    {"data", Value(Value::Data{std::byte{0}, std::byte{255}})},
    {"date", Value(Date(1'700'000'000s))},
    {"integer", 7},
    {"real", 2.5},
    {"string", "Größe \U0001F600"},
    {"true", true},
};

// As a Mac archives {"a": ["b", 2], "when": 2001-01-01T00:01:40Z, "raw": 2 bytes}, in the XML form.
constexpr std::string_view kMacArchive = R"(<?xml version="1.0" encoding="UTF-8"?>
<!DOCTYPE plist PUBLIC "-//Apple//DTD PLIST 1.0//EN" "http://www.apple.com/DTDs/PropertyList-1.0.dtd">
<plist version="1.0"><dict>
<key>$archiver</key><string>NSKeyedArchiver</string>
<key>$objects</key><array>
<string>$null</string>
<dict>
  <key>$class</key><dict><key>CF$UID</key><integer>11</integer></dict>
  <key>NS.keys</key><array>
    <dict><key>CF$UID</key><integer>2</integer></dict>
    <dict><key>CF$UID</key><integer>3</integer></dict>
    <dict><key>CF$UID</key><integer>4</integer></dict></array>
  <key>NS.objects</key><array>
    <dict><key>CF$UID</key><integer>5</integer></dict>
    <dict><key>CF$UID</key><integer>8</integer></dict>
    <dict><key>CF$UID</key><integer>10</integer></dict></array>
</dict>
<string>a</string><string>when</string><string>raw</string>
<dict>
  <key>$class</key><dict><key>CF$UID</key><integer>12</integer></dict>
  <key>NS.objects</key><array>
    <dict><key>CF$UID</key><integer>6</integer></dict>
    <dict><key>CF$UID</key><integer>7</integer></dict></array>
</dict>
<dict>
  <key>$class</key><dict><key>CF$UID</key><integer>13</integer></dict>
  <key>NS.string</key><string>b</string>
</dict>
<integer>2</integer>
<dict>
  <key>$class</key><dict><key>CF$UID</key><integer>9</integer></dict>
  <key>NS.time</key><real>100</real>
</dict>
<dict><key>$classname</key><string>NSDate</string>
  <key>$classes</key><array><string>NSDate</string><string>NSObject</string></array></dict>
<dict>
  <key>$class</key><dict><key>CF$UID</key><integer>14</integer></dict>
  <key>NS.data</key><data>AP8=</data>
</dict>
<dict><key>$classname</key><string>NSDictionary</string></dict>
<dict><key>$classname</key><string>NSMutableArray</string></dict>
<dict><key>$classname</key><string>NSMutableString</string></dict>
<dict><key>$classname</key><string>NSMutableData</string></dict>
</array>
<key>$top</key><dict><key>root</key><dict><key>CF$UID</key><integer>1</integer></dict></dict>
<key>$version</key><integer>100000</integer>
</dict></plist>
)";

std::string replaced(std::string_view text, std::string_view from, std::string_view to) {
  std::string answer(text);
  const std::size_t place = answer.find(from);
  EXPECT_NE(place, std::string::npos) << from;
  answer.replace(place, from.size(), to);
  return answer;
}

TEST(KeyedArchives, ReadsWhatThisSystemsArchiverWrote) {
  const auto result = unarchiveDictionary(trial::archive(Value(kContents)));

  ASSERT_TRUE(result) << result.error().localizedDescription();
  EXPECT_EQ(result.value(), kContents);
}

TEST(KeyedArchives, ReadsWhatAMacWrote) {
  const auto result = unarchiveDictionary(kMacArchive);

  ASSERT_TRUE(result) << result.error().localizedDescription();
  EXPECT_EQ(result.value(), (Value::Dictionary{{"a", Value(Value::Array{"b", 2})},
                                               {"raw", Value(Value::Data{std::byte{0}, std::byte{255}})},
                                               {"when", Value(Date(978'307'300s))}}));
}

TEST(KeyedArchives, APlainXMLListIsAnError) {
  EXPECT_EQ(failureOf("<plist><dict><key>a</key><string>b</string></dict></plist>"),
            "The keyed archive cannot be read: it is none.");
}

TEST(KeyedArchives, APlainBinaryListIsAnError) {
  EXPECT_EQ(failureOf(trial::binaryList(Value(Value::Dictionary{{"a", "b"}}))),
            "The keyed archive cannot be read: it is none.");
}

TEST(KeyedArchives, ARootThatIsNoDictionaryIsAnError) {
  EXPECT_EQ(failureOf(trial::archive(Value(Value::Array{"a"}))),
            "The keyed archive cannot be read: its root is no dictionary.");
}

TEST(KeyedArchives, AnObjectOfAnotherClassIsAnError) {
  const objc::AutoreleasePool pool;
  const objc::Id url =
      objc::send(objc::classNamed("NSURL"), "URLWithString:", objc::string("https://localhost"));
  const objc::Object root = objc::make("NSMutableDictionary");
  objc::send<void>(root, "setObject:forKey:", url, objc::string("url"));

  EXPECT_EQ(
      failureOf(trial::archive(root)),
      "The keyed archive cannot be read: it holds an object of another class than property lists have.");
}

TEST(KeyedArchives, AnotherArchiverIsAnError) {
  EXPECT_EQ(failureOf(replaced(kMacArchive, ">NSKeyedArchiver<", ">NSArchiver<")),
            "The keyed archive cannot be read: it is none.");
}

struct Damage {
  std::string name;
  std::string_view from;
  std::string_view to;
  std::string reason;
};

class DamagedKeyedArchive : public testing::TestWithParam<Damage> {};

TEST_P(DamagedKeyedArchive, IsAnError) {
  const std::string bytes = replaced(kMacArchive, GetParam().from, GetParam().to);

  EXPECT_EQ(failureOf(bytes), "The keyed archive cannot be read: " + GetParam().reason + ".");
}

const std::vector<Damage> kDamages = {
    {"NoObjects", "$objects", "$things", "it has no objects"},
    {"NoTop", "$top", "$bottom", "it has no root"},
    {"NoRoot", ">root<", ">roof<", "it has no root"},
    {"RootIsNull", "<integer>1</integer></dict></dict>", "<integer>0</integer></dict></dict>",
     "a reference points to no object"},
    {"RootOutside", "<integer>1</integer></dict></dict>", "<integer>15</integer></dict></dict>",
     "a reference points to no object"},
    {"RootBelowZero", "<integer>1</integer></dict></dict>", "<integer>-1</integer></dict></dict>",
     "a reference points to no object"},
    {"ReferenceIsText", "<integer>1</integer></dict></dict>", "<string>1</string></dict></dict>",
     "a reference is damaged"},
    {"RootHoldsItself", "<integer>5</integer>", "<integer>1</integer>", "it is nested too deeply"},
    {"ArrayHoldsItself", "<integer>6</integer>", "<integer>5</integer>", "it is nested too deeply"},
    {"ClassOutside", "<integer>12</integer>", "<integer>99</integer>", "a reference points to no object"},
    {"ClassIsText", "<integer>12</integer>", "<integer>2</integer>", "a class is damaged"},
    {"ClassWithoutName", "$classname</key><string>NSMutableArray", "$name</key><string>NSMutableArray",
     "a class is damaged"},
    {"UnknownClass", ">NSMutableArray<", ">NSTask<",
     "it holds an object of another class than property lists have"},
    {"FewerKeysThanObjects", "<dict><key>CF$UID</key><integer>2</integer></dict>", "",
     "a dictionary has not as many keys as objects"},
    {"KeyIsANumber", "<integer>2</integer></dict>", "<integer>7</integer></dict>", "a key is no string"},
    {"KeysMissing", "NS.keys", "NS.locks", "a collection is damaged"},
    {"DateIsText", "<real>100</real>", "<string>100</string>", "a date is damaged"},
    {"DateOutOfRange", "<real>100</real>", "<real>1e300</real>", "a date is out of range"},
    {"DateIsNoNumber", "<real>100</real>", "<real>nan</real>", "a date is out of range"},
    {"StringIsData", "NS.string</key><string>b</string>", "NS.string</key><data/>", "a string is damaged"},
    {"DataIsText", "<data>AP8=</data>", "<string>AP8=</string>", "data is damaged"},
};

INSTANTIATE_TEST_SUITE_P(Each, DamagedKeyedArchive, testing::ValuesIn(kDamages),
                         [](const auto& each) { return each.param.name; });

}  // namespace
}  // namespace karno::platform
