#include "platform/text/utf8.h"

#include <gtest/gtest.h>

#include <vector>

namespace karno::platform {
namespace {

std::u32string charactersOf(std::string_view text) {
  std::u32string characters;
  while (!text.empty()) characters.push_back(takeCharacter(text));
  return characters;
}

std::string utf8Of(const std::u32string& characters) {
  std::string text;
  for (const char32_t character : characters) appendUTF8(text, character);
  return text;
}

// The first and the last character of each length.
constexpr const char* kEdges = "\x01\x7F\u0080\u07FF\u0800\uD7FF\uE000\uFFFF\U00010000\U0010FFFF";
constexpr const char32_t* kEdgeCharacters =
    U"\x01\x7F\u0080\u07FF\u0800\uD7FF\uE000\uFFFF\U00010000\U0010FFFF";

TEST(UTF8, IsReadAndWrittenCharacterByCharacter) {
  EXPECT_EQ(charactersOf(kEdges), kEdgeCharacters);
  EXPECT_EQ(utf8Of(kEdgeCharacters), kEdges);
  EXPECT_TRUE(isValidUTF8(kEdges));
}

TEST(UTF8, IsLeftAloneWhereItIsValid) {
  EXPECT_EQ(validUTF8(kEdges), kEdges);
  EXPECT_EQ(validUTF8(""), "");
  EXPECT_EQ(validUTF8(std::string_view("a\0b", 3)), std::string("a\0b", 3));
}

TEST(UTF8, KeepsZeroBytes) {
  EXPECT_EQ(charactersOf(std::string_view("a\0b", 3)), std::u32string(U"a\0b", 3));
  EXPECT_EQ(utf8Of(std::u32string(1, U'\0')), std::string(1, '\0'));
}

TEST(UTF8, HoldsTheReplacementCharacterLikeAnyOther) {
  EXPECT_TRUE(isValidUTF8("\uFFFD"));
  EXPECT_EQ(charactersOf("\uFFFDa"), U"\uFFFDa");
}

struct WrongBytes {
  const char* name;
  std::string bytes;
};

class WrongUTF8 : public testing::TestWithParam<WrongBytes> {};

TEST_P(WrongUTF8, ReadsAsOneReplacementForEachByte) {
  const std::string& bytes = GetParam().bytes;

  EXPECT_FALSE(isValidUTF8(bytes));
  EXPECT_FALSE(isValidUTF8("eight of ASCII " + bytes));
  EXPECT_EQ(charactersOf(bytes + "a"), std::u32string(bytes.size(), kReplacementCharacter) + U"a");
  EXPECT_EQ(validUTF8(bytes + "a"), utf8Of(std::u32string(bytes.size(), kReplacementCharacter) + U"a"));
}

const std::vector<WrongBytes> kWrongBytes = {
    {"LoneTail", "\x80"},
    {"CutOff", "\xF0\x9F\x98"},
    {"OverlongZero", "\xC0\x80"},
    {"OverlongInThreeBytes", "\xE0\x9F\xBF"},
    {"OverlongInFourBytes", "\xF0\x8F\xBF\xBF"},
    {"FirstSurrogate", "\xED\xA0\x80"},
    {"LastSurrogate", "\xED\xBF\xBF"},
    {"BeyondTheLastCharacter", "\xF4\x90\x80\x80"},
    {"HugeLead", "\xF8\x88\x80\x80\x80"},
    {"NoByteOfUTF8", "\xFF"},
};

INSTANTIATE_TEST_SUITE_P(Each, WrongUTF8, testing::ValuesIn(kWrongBytes),
                         [](const auto& each) { return each.param.name; });

TEST(UTF8, IsAReplacementForWhatIsNoCharacter) {
  EXPECT_EQ(utf8Of({0xD800, 0xDFFF, 0x110000}), "\uFFFD\uFFFD\uFFFD");
}

TEST(UTF8, BecomesUTF16AndComesBack) {
  EXPECT_EQ(utf16OfUTF8("a\u20AC\U0001F600"), u"a\u20AC\U0001F600");
  EXPECT_EQ(utf8OfUTF16(u"a\u20AC\U0001F600"), "a\u20AC\U0001F600");
  EXPECT_EQ(utf16OfUTF8("a\xFFz"), u"a\uFFFDz");
}

TEST(UTF8, HasAReplacementForHalfACharacterOfUTF16) {
  const char16_t lead = 0xD83D;
  const char16_t trail = 0xDE00;

  EXPECT_EQ(utf8OfUTF16(std::u16string{u'a', lead}), "a\uFFFD");
  EXPECT_EQ(utf8OfUTF16(std::u16string{lead, u'a'}), "\uFFFDa");
  EXPECT_EQ(utf8OfUTF16(std::u16string{trail, lead}), "\uFFFD\uFFFD");
  EXPECT_EQ(utf8OfUTF16(std::u16string{lead, lead, trail}), "\uFFFD\U0001F600");
}

}  // namespace
}  // namespace karno::platform
