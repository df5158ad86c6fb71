#include "karnoctl/verbs/options.h"

#include <gtest/gtest.h>

#include <array>

namespace karno::karnoctl {
namespace {

using Words = std::vector<std::string>;

constexpr std::array<std::string_view, 1> kLines{"--lines"};

TEST(Options, TakeTheirValueBehindAnEqualsSign) {
  EXPECT_EQ(withValuesApart(Words{"--lines=5", "x"}, kLines), (Words{"--lines", "5", "x"}));
  EXPECT_EQ(withValuesApart(Words{"--lines="}, kLines), (Words{"--lines", ""}));
  EXPECT_EQ(withValuesApart(Words{"--lines=a=b"}, kLines), (Words{"--lines", "a=b"}));
}

TEST(Options, TakeTheNextWordAsTheirValueWhateverItLooksLike) {
  EXPECT_EQ(withValuesApart(Words{"--lines", "--lines=5"}, kLines), (Words{"--lines", "--lines=5"}));
}

TEST(Options, StayAsTheyAreWhenTheyTakeNoValue) {
  EXPECT_EQ(withValuesApart(Words{"--follow=yes", "a=b"}, kLines), (Words{"--follow=yes", "a=b"}));
  EXPECT_EQ(withValuesApart(Words{"--lines"}, kLines), (Words{"--lines"}));
}

}  // namespace
}  // namespace karno::karnoctl
