#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>

#include "../../support/standard_error_capture.h"
#include "../stand_in.h"
#include "platform/cocoa/runtime/objc.h"
#include "platform/macos/text/date_formatter.h"
#include "platform/macos/text/text_matching.h"
#include "platform/macos/text/utf16_positions.h"

namespace karno::platform::trial {
namespace {

using foundation::containsMatch;
using foundation::isEqualCaseInsensitive;
using karno::test::StandardErrorCapture;

TEST(FoundationMatching, FindsAnExpressionAnywhereInTheText) {
  EXPECT_TRUE(containsMatch("b+c", "aabbc", false));
  EXPECT_FALSE(containsMatch("^b", "aabbc", false));
}

TEST(FoundationMatching, IgnoresCaseOnlyWhenAsked) {
  EXPECT_TRUE(containsMatch("^https*://", "HTTPS://host", true));
  EXPECT_FALSE(containsMatch("^https*://", "HTTPS://host", false));
}

TEST(FoundationMatching, FindsABadExpressionNowhere) { EXPECT_FALSE(containsMatch("(", "(", false)); }

TEST(FoundationMatching, ComparesWithoutCase) {
  EXPECT_TRUE(isEqualCaseInsensitive("Karno ÄÖ", "kARNO äö"));
  EXPECT_FALSE(isEqualCaseInsensitive("Karno", "Karno "));
}

objc::Id initWithCharacters(objc::Id, objc::Sel selector, const char16_t*, objc::UInteger) {
  return recordAndAnswer(selector);
}

TEST(FoundationMatching, WhatIsRaisedMeansNotEqualAndEndsOnTheConsole) {
  const objc::AutoreleasePool pool;
  static const Class raising = StandInClass("StandInRaisingString")
                                   .method("initWithCharacters:length:", "@@:^SQ", initWithCharacters)
                                   .registerClass();
  StandIns standIns;
  standIns.raise();
  const objc::ClassOverride override("NSString", raising);
  const StandardErrorCapture console;

  EXPECT_FALSE(isEqualCaseInsensitive("a", "a"));
  EXPECT_EQ(console.text(), "comparing texts: raised by a stand-in\n");
}

TEST(FoundationDates, FollowThePattern) {
  const Date noon = std::chrono::sys_days(std::chrono::year(2021) / 6 / 15) + std::chrono::hours(12);

  // In the middle of a month, so that the machine's time zone does not matter.
  EXPECT_EQ("2021-06", FoundationDateFormatter("yyyy-MM").stringFromDate(noon));
}

TEST(Utf16Positions, CountOneUnitPerPlainCharacter) {
  const Utf16Positions positions("one two", "one two");

  EXPECT_EQ(7u, positions.unitCount());
  EXPECT_EQ((TextRange{4, 7}), positions.bytes(4, 3));
}

// U+00E4 takes two bytes and one unit, U+1F600 four bytes and two units.
TEST(Utf16Positions, FollowCharactersOfSeveralBytes) {
  const Utf16Positions positions("ä😀x", "ä😀x");

  EXPECT_EQ(4u, positions.unitCount());
  EXPECT_EQ((TextRange{0, 2}), positions.bytes(0, 1));
  EXPECT_EQ((TextRange{2, 6}), positions.bytes(1, 2));
  EXPECT_EQ((TextRange{6, 7}), positions.bytes(3, 1));
}

TEST(Utf16Positions, TakeHalfACharacterForTheWhole) {
  const Utf16Positions positions("😀x", "😀x");

  EXPECT_EQ((TextRange{0, 4}), positions.bytes(0, 1));
  EXPECT_EQ((TextRange{0, 4}), positions.bytes(1, 1));
}

TEST(Utf16Positions, CountOneUnitPerByteThatIsNotUtf8) {
  const Utf16Positions positions(
      "a\xFF\xFE"
      "b",
      "a\xEF\xBF\xBD\xEF\xBF\xBD"
      "b");

  EXPECT_EQ(4u, positions.unitCount());
  EXPECT_EQ((TextRange{1, 2}), positions.bytes(1, 1));
  EXPECT_EQ((TextRange{3, 4}), positions.bytes(3, 1));
}

TEST(Utf16Positions, KnowAReplacementCharacterThatWasThereBefore) {
  const Utf16Positions positions("\xEF\xBF\xBDx", "\xEF\xBF\xBDx");

  EXPECT_EQ((TextRange{3, 4}), positions.bytes(1, 1));
}

TEST(Utf16Positions, LeaveOutWhatLiesBeyondTheEnd) {
  const Utf16Positions positions("ab", "ab");

  EXPECT_EQ((TextRange{1, 2}), positions.bytes(1, 9));
  EXPECT_EQ((TextRange{2, 2}), positions.bytes(7, 1));
}

}  // namespace
}  // namespace karno::platform::trial
