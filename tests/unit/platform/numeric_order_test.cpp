#include "platform/numeric_order.h"

#include <gtest/gtest.h>

namespace karno::platform {
namespace {

TEST(NumericOrder, TakesARunOfDigitsForItsValue) {
  EXPECT_EQ(-1, numericOrder("4.9", "4.10"));
  EXPECT_EQ(1, numericOrder("4.10.0", "4.4.1"));
  EXPECT_EQ(0, numericOrder("12.7.6", "12.7.6"));
}

TEST(NumericOrder, PassesOverZerosInFrontOfANumber) {
  EXPECT_EQ(0, numericOrder("01", "1"));
  EXPECT_EQ(0, numericOrder("0", "000"));
  EXPECT_EQ(-1, numericOrder("1.01", "1.2"));
  EXPECT_EQ(1, numericOrder("010", "9"));
}

TEST(NumericOrder, TakesNumbersOfAnyLength) {
  EXPECT_EQ(-1, numericOrder("1234567890123456789012345678901234567890",
                             "1234567890123456789012345678901234567891"));
  EXPECT_EQ(
      1, numericOrder("1000000000000000000000000000000000000000", "999999999999999999999999999999999999999"));
  EXPECT_EQ(0, numericOrder("0000000000000000000018446744073709551616", "18446744073709551616"));
}

TEST(NumericOrder, PutsTheTextThatEndsFirstBeforeTheOther) {
  EXPECT_EQ(-1, numericOrder("13.0", "13.0.0"));
  EXPECT_EQ(1, numericOrder("13.0.0", "13.0"));
  EXPECT_EQ(-1, numericOrder("", "0"));
  EXPECT_EQ(0, numericOrder("", ""));
  EXPECT_EQ(-1, numericOrder("01", "1."));
}

TEST(NumericOrder, ComparesOtherCharactersByTheirValue) {
  EXPECT_EQ(-1, numericOrder("4.4", "4a4"));
  EXPECT_EQ(-1, numericOrder("B", "a"));
  EXPECT_EQ(1, numericOrder("é", "z"));
  EXPECT_EQ(-1, numericOrder("4.4-beta", "4.4-beta2"));
}

TEST(NumericOrder, ComparesADigitWithALetterByTheirValues) {
  EXPECT_EQ(-1, numericOrder("999", "a"));
  EXPECT_EQ(1, numericOrder("1.", "1-"));
  EXPECT_EQ(1, numericOrder("0", "-1"));
}

TEST(NumericOrder, TakesForADigitOnlyWhatIsADecimalDigitInASCII) {
  EXPECT_EQ(1, numericOrder("٣", "9"));
  EXPECT_EQ(1, numericOrder("²", "3"));
}

}  // namespace
}  // namespace karno::platform
