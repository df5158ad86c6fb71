#include "karnoctl/log/log_date.h"

#include <gtest/gtest.h>

#include "fake_platform.h"
#include "log/date_texts.h"

namespace karno::karnoctl {
namespace {

TEST(LogDate, IsReadAsItIsWritten) {
  const test::FakePlatform machine;

  EXPECT_EQ(momentOfLogDate(stringForLogDate(test::kStartOfTest)), test::kStartOfTest);
}

TEST(LogDate, IsOfItsZone) {
  const auto berlin = momentOfLogDate("2024-03-05 14:07:09:042+0100");

  ASSERT_TRUE(berlin);
  EXPECT_EQ(momentOfLogDate("2024-03-05 13:07:09:042+0000"), berlin);
  EXPECT_EQ(momentOfLogDate("2024-03-05 09:37:09:042-0330"), berlin);
}

class DateThatIsNone : public testing::TestWithParam<const char*> {};

TEST_P(DateThatIsNone, IsAbsent) { EXPECT_FALSE(momentOfLogDate(GetParam())); }

INSTANTIATE_TEST_SUITE_P(Each, DateThatIsNone,
                         testing::Values("", "2024-03-05", "2024-03-05 14:07:09:042 0100",
                                         "2024-13-05 14:07:09:042+0100", "2024-02-30 14:07:09:042+0100",
                                         "2024/03/05 14:07:09:042+0100", "2567-03-05 14:07:09:042+0700",
                                         "0006-03-05 14:07:09:042+0900", "x024-03-05 14:07:09:042+0100",
                                         "2024-03-05 14:07:09:042+01000"));

}  // namespace
}  // namespace karno::karnoctl
