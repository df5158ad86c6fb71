#include "platform/text/one_line.h"

#include <gtest/gtest.h>

#include <string>

namespace karno::platform {
namespace {

TEST(OneLine, LeavesWhatIsToBeSeenAlone) {
  EXPECT_EQ(inOneLine(""), "");
  EXPECT_EQ(inOneLine("Karno 1.1 \\n ~ \u00A0\u00FC\u05D0\u2027\u202F\uFFFD\U0001F600"),
            "Karno 1.1 \\n ~ \u00A0\u00FC\u05D0\u2027\u202F\uFFFD\U0001F600");
}

TEST(OneLine, WritesControlCharactersAsEscapes) {
  EXPECT_EQ(inOneLine("a\nb\r\tc\033[2J\x7F"), "a\\nb\\r\\tc\\u001b[2J\\u007f");
  EXPECT_EQ(inOneLine(std::string_view("\0\x1F", 2)), "\\u0000\\u001f");
  EXPECT_EQ(inOneLine("\u0080\u009B31m\u009F"), "\\u0080\\u009b31m\\u009f");
}

TEST(OneLine, WritesWhatEndsALineAsAnEscape) { EXPECT_EQ(inOneLine("\u2028\u2029"), "\\u2028\\u2029"); }

TEST(OneLine, WritesWhatTurnsTheDirectionAsAnEscape) {
  EXPECT_EQ(inOneLine("\u202Egpj.exe"), "\\u202egpj.exe");
  EXPECT_EQ(inOneLine("\u061C\u200E\u200F"), "\\u061c\\u200e\\u200f");
  EXPECT_EQ(inOneLine("\u202A\u202B\u202C\u202D"), "\\u202a\\u202b\\u202c\\u202d");
  EXPECT_EQ(inOneLine("\u2066\u2067\u2068\u2069"), "\\u2066\\u2067\\u2068\\u2069");
}

// A byte 0x9B begins a command for a terminal that does not speak UTF-8.
TEST(OneLine, HasAReplacementForEachByteThatIsNotUTF8) {
  EXPECT_EQ(inOneLine("B\xFCro \x9B"
                      "2J"),
            "B\uFFFDro \uFFFD2J");
}

}  // namespace
}  // namespace karno::platform
