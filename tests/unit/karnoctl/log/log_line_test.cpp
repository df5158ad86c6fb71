#include "karnoctl/log/log_line.h"

#include <gtest/gtest.h>

namespace karno::karnoctl {
namespace {

TEST(NumberInAMessage, StandsBehindTheFirstOfItsWords) {
  const std::string_view message = "Child terminated (status:-3, reason:2) (status:7)";

  EXPECT_EQ(numberAfter(message, "(status:"), -3);
  EXPECT_EQ(numberAfter(message, "reason:"), 2);
}

TEST(NumberInAMessage, IsAbsentWithoutItsWordsOrDigits) {
  EXPECT_EQ(numberAfter("Child terminated", "(status:"), std::nullopt);
  EXPECT_EQ(numberAfter("Child terminated (status:", "(status:"), std::nullopt);
  EXPECT_EQ(numberAfter("Child terminated (status: 3)", "(status:"), std::nullopt);
  EXPECT_EQ(numberAfter("Child terminated (status:99999999999)", "(status:"), std::nullopt);
}

}  // namespace
}  // namespace karno::karnoctl
