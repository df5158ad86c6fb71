#include "platform/cocoa/runtime/strings.h"

#include <gtest/gtest.h>

#include "../foundation_objects.h"

namespace karno::platform::objc {
namespace {

std::string thereAndBack(std::string_view original) {
  const AutoreleasePool pool;
  return text(string(original).get());
}

TEST(Strings, KeepEveryLengthOfUTF8) {
  EXPECT_EQ(thereAndBack("a\u00E9\u20AC\U0001F600\U0010FFFF"), "a\u00E9\u20AC\U0001F600\U0010FFFF");
}

TEST(Strings, KeepAnEmptyText) { EXPECT_EQ(thereAndBack(""), ""); }

TEST(Strings, KeepNulCharacters) { EXPECT_EQ(thereAndBack({"a\0b\0", 4}), std::string("a\0b\0", 4)); }

TEST(Strings, KeepAByteOrderMarkInside) { EXPECT_EQ(thereAndBack("x\uFEFFy"), "x\uFEFFy"); }

TEST(Strings, KeepNoncharacters) { EXPECT_EQ(thereAndBack("x\uFFFE\uFFFF"), "x\uFFFE\uFFFF"); }

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
  const AutoreleasePool pool;
  const Object original = string("x\U0001F600y\U0001F600");

  EXPECT_EQ(text(trial::substring(original.get(), {0, 2})), "x\uFFFD");
  EXPECT_EQ(text(trial::substring(original.get(), {2, 4})), "\uFFFDy\U0001F600");
  EXPECT_EQ(text(trial::substring(original.get(), {2, 3})), "\uFFFDy\uFFFD");
}

TEST(Strings, ANullStringIsAnEmptyText) { EXPECT_EQ(text(nullptr), ""); }

}  // namespace
}  // namespace karno::platform::objc
