#include "platform/property_lists/property_lists.h"

#include <gtest/gtest.h>

#include <chrono>
#include <limits>

#include "../cocoa/foundation_objects.h"
#include "platform/property_lists/limits.h"

namespace karno::platform {
namespace {

using namespace std::chrono_literals;

Value parsed(std::string_view bytes) {
  const auto result = parsePropertyList(bytes);
  return result ? result.value() : Value(result.error().localizedDescription());
}

Value thereAndBack(const Value& value) { return parsed(propertyListXML(value).value()); }

Value nestedArrays(int levels) {
  Value value("core");
  for (int level = 0; level < levels; ++level) {
    value = Value(Value::Array{value});
  }
  return value;
}

const Value kEveryKind(Value::Dictionary{
    {"array", Value(Value::Array{1, "two", Value(Value::Dictionary{})})},
    {"data", Value(Value::Data{std::byte{0}, std::byte{1}, std::byte{255}})},
    {"date", Value(Date(1'700'000'000s))},
    {"false", false},
    {"integer", std::numeric_limits<std::int64_t>::min()},
    {"real", 0.1},
    {"string", "Größe \U0001F600 <&> \\U0041 \r\n\t"},
    {"true", true},
});

TEST(PropertyLists, WritesTheFormThatMacsWrite) {
  EXPECT_EQ(propertyListXML(kEveryKind).value(),
            "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
            "<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" "
            "\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n"
            "<plist version=\"1.0\">\n"
            "<dict>\n"
            "\t<key>array</key>\n"
            "\t<array>\n"
            "\t\t<integer>1</integer>\n"
            "\t\t<string>two</string>\n"
            "\t\t<dict/>\n"
            "\t</array>\n"
            "\t<key>data</key>\n"
            "\t<data>AAH/</data>\n"
            "\t<key>date</key>\n"
            "\t<date>2023-11-14T22:13:20Z</date>\n"
            "\t<key>false</key>\n"
            "\t<false/>\n"
            "\t<key>integer</key>\n"
            "\t<integer>-9223372036854775808</integer>\n"
            "\t<key>real</key>\n"
            "\t<real>0.1</real>\n"
            "\t<key>string</key>\n"
            "\t<string>Größe \U0001F600 &lt;&amp;&gt; \\U0041 &#13;\n\t</string>\n"
            "\t<key>true</key>\n"
            "\t<true/>\n"
            "</dict>\n"
            "</plist>\n");
}

TEST(PropertyLists, ReadsWhatItWrote) { EXPECT_EQ(thereAndBack(kEveryKind), kEveryKind); }

TEST(PropertyLists, ReadsTheBinaryForm) { EXPECT_EQ(parsed(trial::binaryList(kEveryKind)), kEveryKind); }

TEST(PropertyLists, KeepsControlCharactersAndWhiteSpaceOfTexts) {
  const std::string text("  \0\x01\x1F  ", 7);

  EXPECT_EQ(thereAndBack(Value(text)), Value(text));
}

TEST(PropertyLists, WritesU_FFFDForEachByteThatIsNotUTF8) {
  EXPECT_EQ(thereAndBack(Value("a\xFF")), Value("a\uFFFD"));
}

TEST(PropertyLists, KeepsNumbersThatAreNoNumbers) {
  const double infinity = std::numeric_limits<double>::infinity();

  EXPECT_EQ(thereAndBack(Value(Value::Array{infinity, -infinity, 5e-324, 1e300})),
            Value(Value::Array{infinity, -infinity, 5e-324, 1e300}));
  EXPECT_EQ(thereAndBack(Value(std::numeric_limits<double>::quiet_NaN())).description(), "nan");
}

TEST(PropertyLists, KeepsTheFirstAndTheLastDate) {
  EXPECT_EQ(parsed("<date>0001-01-01T00:00:00Z</date>"), Value(Date::min()));
  EXPECT_EQ(parsed("<date>9999-12-31T23:59:59Z</date>"), Value(Date::max()));
  EXPECT_EQ(thereAndBack(Value(Date::min())), Value(Date::min()));
}

TEST(PropertyLists, ReadsHexadecimalAndLargeIntegers) {
  EXPECT_EQ(parsed("<array><integer>0x1F</integer><integer>+7</integer><integer> -0x10 </integer>"
                   "<integer>18446744073709551615</integer></array>"),
            Value(Value::Array{31, 7, -16, 18'446'744'073'709'551'615.0}));
}

TEST(PropertyLists, ReadsEntitiesCommentsAndCharacterData) {
  EXPECT_EQ(
      parsed("<!-- c --><plist><?p?><string>&lt;&gt;&amp;&quot;&apos;&#65;&#x1F600;<!-- no --><![CDATA[<&]]>"
             "</string></plist>\n<!-- end -->"),
      Value("<>&\"'A\U0001F600<&"));
}

TEST(PropertyLists, ReadsEmptyElementsAndAByteOrderMark) {
  EXPECT_EQ(parsed("\uFEFF<array><string/><data/><array/><dict/></array>"),
            Value(Value::Array{"", Value(Value::Data{}), Value(Value::Array{}), Value(Value::Dictionary{})}));
}

TEST(PropertyLists, AllowsSixtyFourLevels) {
  EXPECT_EQ(thereAndBack(nestedArrays(64)), nestedArrays(64));
  EXPECT_EQ(parsed(trial::binaryList(nestedArrays(64))), nestedArrays(64));
}

TEST(PropertyLists, DoesNotWriteMoreThanSixtyFourLevels) {
  const auto result = propertyListXML(nestedArrays(65));

  EXPECT_EQ(result.error().localizedDescription(),
            "The property list cannot be written: it is nested too deeply.");
  EXPECT_EQ(result.error().code(), 3852);
}

TEST(PropertyLists, RefusesMoreThanSixteenMiB) {
  std::string bytes = "<string>" + std::string(lists::kPropertyListSizeBytesMax, 'x') + "</string>";

  EXPECT_EQ(parsed(bytes), Value("The property list cannot be read: it is too large."));
}

struct DamagedXML {
  std::string name;
  std::string xml;
  std::string reason;
};

class DamagedXMLList : public testing::TestWithParam<DamagedXML> {};

TEST_P(DamagedXMLList, IsAnErrorThatNamesTheLine) {
  const auto result = parsePropertyList(GetParam().xml);

  ASSERT_FALSE(result);
  EXPECT_EQ(result.error().domain(), "NSCocoaErrorDomain");
  EXPECT_EQ(result.error().code(), 3840);
  EXPECT_EQ(result.error().localizedDescription(),
            "The property list cannot be read: " + GetParam().reason + ".");
}

std::string repeated(std::string_view text, int times) {
  std::string answer;
  for (int count = 0; count < times; ++count) {
    answer += text;
  }
  return answer;
}

const std::vector<DamagedXML> kDamagedXML = {
    {"Empty", "", "line 1: the text ends too early"},
    {"OldStyle", "{ a = 1; }", "line 1: there is text where a tag belongs"},
    {"JustText", "hello", "line 1: there is text where a tag belongs"},
    {"Latin1", "<string>\xE9</string>", "it is neither binary nor UTF-8"},
    {"UTF16", std::string("\xFE\xFF\0<", 4), "it is neither binary nor UTF-8"},
    {"NothingInside", "<plist>\n</plist>", "line 2: a value is missing"},
    {"Unclosed", "<dict>\n<key>a</key>\n<string>b</string>", "line 3: the text ends too early"},
    {"HalfATag", "<plist><dict", "line 1: a tag does not end"},
    {"HalfAComment", "<!-- ", "line 1: the text ends too early"},
    {"WrongClosing", "<array><string>a</array>", "line 1: a closing tag is missing"},
    {"CrossedContainers", "<array></dict>", "line 1: a value is missing"},
    {"KeyWithoutValue", "<dict><key>a</key></dict>", "line 1: a value is missing"},
    {"ValueWithoutKey", "<dict><string>a</string></dict>", "line 1: a key is missing"},
    {"UnknownElement", "<set/>", "line 1: an element is unknown"},
    {"TwoRoots", "<plist><true/><true/></plist>", "line 1: a closing tag is missing"},
    {"SomethingBehind", "<plist><true/></plist>x", "line 1: something follows the value"},
    {"TagInText", "<string>a<b/></string>", "line 1: a closing tag is missing"},
    {"TextInContainer", "<array>x</array>", "line 1: there is text where a tag belongs"},
    {"TextInBoolean", "<true>x</true>", "line 1: a boolean has contents"},
    {"NoInteger", "<integer>12a</integer>", "line 1: an integer is none"},
    {"EmptyInteger", "<integer/>", "line 1: an integer is none"},
    {"HugeInteger", "<integer>99999999999999999999</integer>", "line 1: an integer is none"},
    {"HugeNegativeInteger", "<integer>-9223372036854775809</integer>", "line 1: an integer is none"},
    {"NoReal", "<real>1.5x</real>", "line 1: a real is none"},
    {"HexadecimalReal", "<real>0x1p3</real>", "line 1: a real is none"},
    {"NoDate", "<date>2024-02-30T00:00:00Z</date>", "line 1: a date is none"},
    {"DateWithoutTime", "<date>2024-02-01</date>", "line 1: a date is none"},
    {"NoBase64", "<data>A-B=</data>", "line 1: data is not base 64"},
    {"LoneBase64Digit", "<data>A</data>", "line 1: data is not base 64"},
    {"UnknownEntity", "<string>&who;</string>", "line 1: an entity is unknown"},
    {"EndlessEntity", "<string>&" + std::string(100, 'a'), "line 1: an entity is unknown"},
    {"SurrogateReference", "<string>&#xD800;</string>", "line 1: a character reference is none"},
    {"HugeReference", "<string>&#99999999;</string>", "line 1: a character reference is none"},
    {"EmptyReference", "<string>&#;</string>", "line 1: a character reference is none"},
    {"OwnEntities",
     "<!DOCTYPE plist [<!ENTITY a \"aaaaaaaaaa\"><!ENTITY b "
     "\"&a;&a;&a;&a;\">]><plist><string>&b;</string></plist>",
     "line 1: the document type has declarations"},
    {"FileEntity", "<!DOCTYPE plist [<!ENTITY x SYSTEM \"file:///etc/passwd\">]><string>&x;</string>",
     "line 1: the document type has declarations"},
    {"SixtyFiveLevels", repeated("<array>", 65) + repeated("</array>", 65),
     "line 1: it is nested too deeply"},
    {"AHundredThousandLevels", repeated("<array>", 100'000), "line 1: it is nested too deeply"},
    {"AHundredThousandDictionaries", repeated("<dict><key>a</key>", 100'000),
     "line 1: it is nested too deeply"},
    {"Zeros", std::string(4096, '\0'), "line 1: there is text where a tag belongs"},
};

INSTANTIATE_TEST_SUITE_P(Each, DamagedXMLList, testing::ValuesIn(kDamagedXML),
                         [](const auto& each) { return each.param.name; });

}  // namespace
}  // namespace karno::platform
