#include "karnoctl/log/log_date.h"

#include <array>
#include <chrono>
#include <cstddef>

namespace karno::karnoctl {
namespace {

constexpr std::string_view kDateShape = "dddd-dd-dd dd:dd:dd:ddd+dddd";

// The years of other calendars are hundreds away: 2567, 1445, 113, 6.
constexpr int kYearMin = 2019;
constexpr int kYearMax = 2199;

// Year, month, day, hour, minute, second, milliseconds, zone.
using DateNumbers = std::array<int, 8>;

std::optional<DateNumbers> numbersOf(std::string_view date) {
  if (date.size() != kDateShape.size()) return std::nullopt;
  DateNumbers numbers{};
  std::size_t field = 0;
  for (std::size_t i = 0; i < date.size(); ++i) {
    const bool isDigit = date[i] >= '0' && date[i] <= '9';
    const bool isZoneSign = kDateShape[i] == '+';
    if (isDigit != (kDateShape[i] == 'd')) return std::nullopt;
    if (isZoneSign ? date[i] != '+' && date[i] != '-' : !isDigit && date[i] != kDateShape[i])
      return std::nullopt;
    if (isDigit) numbers.at(field) = numbers.at(field) * 10 + (date[i] - '0');
    if (!isDigit) ++field;
  }
  return numbers;
}

}  // namespace

std::optional<platform::Date> momentOfLogDate(std::string_view date) {
  using namespace std::chrono;
  const auto numbers = numbersOf(date);
  if (!numbers) return std::nullopt;
  const auto [year, month, day, hour, minute, second, milliseconds, zone] = *numbers;
  const year_month_day whole(std::chrono::year(year), std::chrono::month(static_cast<unsigned>(month)),
                             std::chrono::day(static_cast<unsigned>(day)));
  if (year < kYearMin || year > kYearMax || !whole.ok()) return std::nullopt;
  const minutes east((zone / 100 * 60 + zone % 100) * (date[date.size() - 5] == '-' ? -1 : 1));
  return sys_days(whole) + hours(hour) + minutes(minute) + seconds(second) +
         std::chrono::milliseconds(milliseconds) - east;
}

}  // namespace karno::karnoctl
