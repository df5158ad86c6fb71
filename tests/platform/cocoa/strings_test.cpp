#include "platform/cocoa/strings.h"

#include <gtest/gtest.h>

#include <vector>

namespace karno::platform::objc {
namespace {

std::string thereAndBack(std::string_view original) {
  const AutoreleasePool pool;
  return text(string(original).get());
}

std::string textOfUnits(const std::vector<char16_t>& units) {
  const AutoreleasePool pool;
  const char16_t* const characters = units.data();
  const Object made =
      Object::adopting(send(send(classNamed("NSString"), "alloc"), "initWithCharacters:length:", characters,
                            UInteger{units.size()}));
  return text(made.get());
}

TEST(Strings, KeepEveryLengthOfUTF8) {
  EXPECT_EQ(thereAndBack("a\u00E9\u20AC\U0001F600\U0010FFFF"), "a\u00E9\u20AC\U0001F600\U0010FFFF");
}

TEST(Strings, KeepAnEmptyText) { EXPECT_EQ(thereAndBack(""), ""); }

TEST(Strings, KeepNulCharacters) { EXPECT_EQ(thereAndBack({"a\0b\0", 4}), std::string("a\0b\0", 4)); }

TEST(Strings, KeepAByteOrderMark) { EXPECT_EQ(thereAndBack("\uFEFFx"), "\uFEFFx"); }

TEST(Strings, KeepNoncharacters) { EXPECT_EQ(thereAndBack("\uFFFE\uFFFF"), "\uFFFE\uFFFF"); }

TEST(Strings, ReplaceEachByteThatIsNotUTF8) {
  EXPECT_EQ(thereAndBack("a\xFF"
                         "b\xC3"),
            "a\uFFFDb\uFFFD");
}

TEST(Strings, ReplaceOverlongForms) { EXPECT_EQ(thereAndBack("\xC0\xAF"), "\uFFFD\uFFFD"); }

TEST(Strings, ReplaceSurrogatesWrittenInUTF8) {
  EXPECT_EQ(thereAndBack("\xED\xA0\x80"), "\uFFFD\uFFFD\uFFFD");
}

TEST(Strings, ReplaceCharactersBeyondUnicode) {
  EXPECT_EQ(thereAndBack("\xF4\x90\x80\x80"), "\uFFFD\uFFFD\uFFFD\uFFFD");
}

TEST(Strings, ReplaceSurrogatesWithoutTheirOtherHalf) {
  EXPECT_EQ(textOfUnits({0xD83D, u'x', 0xDE00, 0xD83D}), "\uFFFDx\uFFFD\uFFFD");
}

TEST(Strings, JoinSurrogatePairs) { EXPECT_EQ(textOfUnits({0xD83D, 0xDE00}), "\U0001F600"); }

TEST(Strings, ANullStringIsAnEmptyText) { EXPECT_EQ(text(nullptr), ""); }

}  // namespace
}  // namespace karno::platform::objc
