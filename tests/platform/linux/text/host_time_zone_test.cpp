#include "platform/linux/text/host_time_zone.h"

#include <gtest/gtest.h>

#include <chrono>
#include <string>
#include <vector>

#include "../../support/scoped_environment.h"
#include "platform/linux/text/icu_date_formatter.h"
#include "platform/linux/text/plain_date_formatter.h"

namespace karno::platform {
namespace {

using test::ScopedEnvironment;

// Noon in Greenwich.
constexpr Date kWinter{std::chrono::sys_days{std::chrono::January / 15 / 2024} + std::chrono::hours(12)};
constexpr Date kSummer{std::chrono::sys_days{std::chrono::July / 15 / 2024} + std::chrono::hours(12)};

struct Setting {
  const char* name;
  const char* variable;
  const char* winter;
  const char* summer;
};

class HostTimeZoneOf : public testing::TestWithParam<Setting> {};

TEST_P(HostTimeZoneOf, TheVariableIsThatOfTheDates) {
  const ScopedEnvironment variable("TZ", GetParam().variable);
  const std::string pattern = "HH:mm:ssZZZ";
  const icu::Locale locale("en_US_POSIX");
  const IcuDateFormatter icus(pattern, locale, std::nullopt);
  const auto plain = makePlainDateFormatter(pattern, locale, std::nullopt);

  for (const DateFormatter* const formatter :
       std::initializer_list<const DateFormatter*>{&icus, plain.get()}) {
    EXPECT_EQ(formatter->stringFromDate(kWinter), GetParam().winter);
    EXPECT_EQ(formatter->stringFromDate(kSummer), GetParam().summer);
    EXPECT_EQ(formatter->stringFromDate(kWinter), GetParam().winter);
  }
}

const std::vector<Setting> kSettings = {
    {"APlace", "Europe/Rome", "13:00:00+0100", "14:00:00+0200"},
    {"APlaceAfterAColon", ":Europe/Rome", "13:00:00+0100", "14:00:00+0200"},
    {"ANameWithDigits", "Etc/GMT+3", "09:00:00-0300", "09:00:00-0300"},
    {"AnAmericanName", "EST5EDT", "07:00:00-0500", "08:00:00-0400"},
    {"ARuleForEurope", "CET-1CEST,M3.5.0,M10.5.0/3", "13:00:00+0100", "14:00:00+0200"},
    {"ARuleForAmerica", "EST5EDT,M3.2.0,M11.1.0", "07:00:00-0500", "08:00:00-0400"},
    {"ARuleForTheSouth", "AEST-10AEDT,M10.1.0,M4.1.0/3", "23:00:00+1100", "22:00:00+1000"},
    {"AnOffsetWithANameOfDigits", "<+03>-3", "15:00:00+0300", "15:00:00+0300"},
    {"AnOffsetThatICUWouldTurnAround", "GMT+3", "09:00:00-0300", "09:00:00-0300"},
    {"AnOffsetWithMinutes", "<+0545>-5:45", "17:45:00+0545", "17:45:00+0545"},
    {"Nothing", "", "12:00:00+0000", "12:00:00+0000"},
    {"Nonsense", "Nowhere/At/All", "12:00:00+0000", "12:00:00+0000"},
};

INSTANTIATE_TEST_SUITE_P(Each, HostTimeZoneOf, testing::ValuesIn(kSettings),
                         [](const auto& test) { return test.param.name; });

TEST(HostTimeZone, FollowsTheVariableFromARuleToAPlaceAndBack) {
  HostTimeZone& zone = HostTimeZone::instance();
  const auto offset = [&zone] { return zone.at(0)->getRawOffset() / 60'000; };
  const ScopedEnvironment rule("TZ", "<+03>-3");
  const std::int32_t first = offset();

  std::int32_t second = 0;
  {
    const ScopedEnvironment place("TZ", "Asia/Tokyo");
    second = offset();
  }

  EXPECT_EQ(first, 180);
  EXPECT_EQ(second, 540);
  EXPECT_EQ(offset(), 180);
}

}  // namespace
}  // namespace karno::platform
