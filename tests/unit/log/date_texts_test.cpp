#include "log/date_texts.h"

#include <gmock/gmock.h>

#include "fake_platform.h"

namespace karno {
namespace {

using namespace std::chrono;
using platform::Date;
using test::FakePlatform;
using test::kStartOfTest;

TEST(LogDate, HasAColonBeforeItsMillisecondsAndTheZoneAsSignHoursAndMinutes) {
  FakePlatform machine;

  EXPECT_EQ(stringForLogDate(kStartOfTest), "2024-03-05 14:07:09:042+0100");
}

TEST(LogDate, HasTheOffsetOfTheDateNotOfNow) {
  FakePlatform machine;

  EXPECT_EQ(stringForLogDate(sys_days(2024y / 7 / 1) + 12h), "2024-07-01 14:00:00:000+0200");
}

TEST(LogDate, HasNegativeAndHalfHourOffsets) {
  FakePlatform machine;
  machine.text.setTimeZone("America/New_York");
  const std::string newYork = stringForLogDate(kStartOfTest);

  machine.text.setTimeZone("Asia/Kolkata");
  const std::string kolkata = stringForLogDate(kStartOfTest + 1s);

  EXPECT_EQ(newYork, "2024-03-05 08:07:09:042-0500");
  EXPECT_EQ(kolkata, "2024-03-05 18:37:10:042+0530");
}

TEST(LogDate, CountsHoursFrom0To23) {
  FakePlatform machine;

  EXPECT_EQ(stringForLogDate(sys_days(2024y / 3 / 4) + 23h), "2024-03-05 00:00:00:000+0100");
}

TEST(LogDate, CutsOffWhatIsSmallerThanAMillisecond) {
  FakePlatform machine;

  EXPECT_EQ(stringForLogDate(kStartOfTest + 999'999ns), "2024-03-05 14:07:09:042+0100");
}

TEST(LogDate, TellsMillisecondsOfOneSecondApart) {
  FakePlatform machine;
  const Date second = floor<seconds>(kStartOfTest);

  EXPECT_EQ(stringForLogDate(second), "2024-03-05 14:07:09:000+0100");
  EXPECT_EQ(stringForLogDate(second + 7ms), "2024-03-05 14:07:09:007+0100");
  EXPECT_EQ(stringForLogDate(second + 120ms), "2024-03-05 14:07:09:120+0100");
  EXPECT_EQ(stringForLogDate(second + 999ms), "2024-03-05 14:07:09:999+0100");
}

TEST(LogDate, GoesBackInTimeAsWell) {
  FakePlatform machine;

  const std::string later = stringForLogDate(kStartOfTest);
  const std::string earlier = stringForLogDate(kStartOfTest - 1s);

  EXPECT_EQ(later, "2024-03-05 14:07:09:042+0100");
  EXPECT_EQ(earlier, "2024-03-05 14:07:08:042+0100");
}

TEST(LogDate, WorksBefore1970) {
  FakePlatform machine;

  EXPECT_EQ(stringForLogDate(Date(-1ms)), "1970-01-01 00:59:59:999+0100");
}

TEST(LogDate, FollowsAChangeOfTheTimeZoneWhileTheLauncherRuns) {
  FakePlatform machine;

  const std::string before = stringForLogDate(kStartOfTest);
  machine.text.setTimeZone("Asia/Tokyo");
  const std::string after = stringForLogDate(kStartOfTest + 1s);

  EXPECT_EQ(before, "2024-03-05 14:07:09:042+0100");
  EXPECT_EQ(after, "2024-03-05 22:07:10:042+0900");
}

TEST(LogDate, IsTheSameOnEveryThread) {
  FakePlatform machine;
  const std::string here = stringForLogDate(kStartOfTest);
  std::string there;

  machine.onThread([&] { there = stringForLogDate(kStartOfTest); });
  machine.runUntilIdle();

  EXPECT_EQ(there, here);
}

// Locales with digits, calendars or eras of their own.
class LogDateLocale : public ::testing::TestWithParam<const char*> {};

TEST_P(LogDateLocale, IsRenderedAsTheWholePatternWouldBe) {
  FakePlatform machine;
  machine.text.setLocale(GetParam());
  const auto whole = machine.text.makeDateFormatter("yyyy-MM-dd HH:mm:ss:SSSZZZ");

  EXPECT_EQ(stringForLogDate(kStartOfTest), whole->stringFromDate(kStartOfTest));
  EXPECT_EQ(stringForLogDate(kStartOfTest + 889ms), whole->stringFromDate(kStartOfTest + 889ms));
}

INSTANTIATE_TEST_SUITE_P(Locales, LogDateLocale,
                         ::testing::Values("en_US", "de_DE", "ar_EG", "fa_IR", "th_TH", "he_IL", "hi_IN",
                                           "my_MM", "ja_JP@calendar=japanese", "mr_IN", "ckb_IQ"));

TEST(Timestamp, IsAllDigits) {
  FakePlatform machine;

  EXPECT_EQ(timestampForDate(kStartOfTest), "20240305140709042");
}

TEST(Timestamp, IsInTheLocalTimeZone) {
  FakePlatform machine;
  machine.text.setTimeZone("America/New_York");

  EXPECT_EQ(timestampForDate(kStartOfTest), "20240305080709042");
}

TEST(FormattedDateTime, HasTheAbbreviatedMonth) {
  FakePlatform machine;

  EXPECT_EQ(formattedDateTime(kStartOfTest), "05 Mar 2024 14:07:09");
}

TEST(FormattedDateTime, HasTheMonthNameOfTheUsersLocale) {
  FakePlatform machine;
  machine.text.setLocale("fr_FR");

  EXPECT_EQ(formattedDateTime(kStartOfTest), "05 mars 2024 14:07:09");
}

TEST(FormattedDateTime, FollowsAChangeOfTheLocaleWhileTheLauncherRuns) {
  FakePlatform machine;
  static_cast<void>(formattedDateTime(kStartOfTest));

  machine.text.setLocale("fr_FR");

  EXPECT_EQ(formattedDateTime(kStartOfTest + 1s), "05 mars 2024 14:07:10");
}

}  // namespace
}  // namespace karno
