#include "command_line/closest_word.h"

#include <gtest/gtest.h>

#include <array>
#include <string>
#include <string_view>

namespace karno::command_line {
namespace {

constexpr std::array<std::string_view, 3> kWords{"post", "status", "restart"};

TEST(ClosestWord, IsTheOneWithTheFewestSlips) {
  EXPECT_EQ(closestWord("pots", kWords), "post");
  EXPECT_EQ(closestWord("stat", kWords), "status");
  EXPECT_EQ(closestWord("restartt", kWords), "restart");
}

TEST(ClosestWord, IsTheFirstOfSeveralAsNear) {
  constexpr std::array<std::string_view, 2> kTwins{"log", "lag"};

  EXPECT_EQ(closestWord("lug", kTwins), "log");
}

TEST(ClosestWord, IsNoneWhenNothingIsNear) {
  EXPECT_EQ(closestWord("banana", kWords), std::nullopt);
  EXPECT_EQ(closestWord("", kWords), std::nullopt);
  EXPECT_EQ(closestWord("stabcd", kWords), std::nullopt);
  EXPECT_EQ(closestWord(std::string(101, 'p'), kWords), std::nullopt);
}

TEST(ClosestWord, IsLookedForUpToAHundredLetters) {
  const std::string longest(100, 'p');
  const std::array<std::string_view, 1> words{longest};

  EXPECT_EQ(closestWord(std::string(100, 'p'), words), longest);
  EXPECT_EQ(closestWord(std::string(101, 'p'), words), std::nullopt);
}

TEST(Suggestion, FollowsAnErrorText) {
  EXPECT_EQ(suggestion("pst", kWords), "; did you mean 'post'?");
  EXPECT_EQ(suggestion("banana", kWords), "");
}

}  // namespace
}  // namespace karno::command_line
