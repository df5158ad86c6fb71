#include "platform/property_lists/scalar_texts.h"

#include <fmt/format.h>

#include <charconv>
#include <clocale>
#include <cmath>
#include <cstdlib>
#include <limits>

namespace karno::platform::lists {
namespace {

constexpr std::string_view kBase64Digits = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

bool isDigit(char character) { return character >= '0' && character <= '9'; }

// Of a text that has digits there.
int numberAt(std::string_view text, std::size_t begin, std::size_t length) {
  int number = 0;
  for (const char digit : text.substr(begin, length)) {
    number = number * 10 + (digit - '0');
  }
  return number;
}

std::optional<double> namedReal(std::string_view text) {
  const bool isNegative = text.starts_with('-');
  if (isNegative || text.starts_with('+')) {
    text.remove_prefix(1);
  }
  if (text == "nan") {
    return std::numeric_limits<double>::quiet_NaN();
  }
  if (text == "inf" || text == "infinity") {
    const double infinity = std::numeric_limits<double>::infinity();
    return isNegative ? -infinity : infinity;
  }
  return std::nullopt;
}

Date inRange(std::chrono::sys_seconds seconds) {
  using std::chrono::floor;
  if (seconds > floor<std::chrono::seconds>(Date::max())) {
    return Date::max();
  }
  // The second in which the smallest moment lies began before it.
  if (seconds <= floor<std::chrono::seconds>(Date::min())) {
    return Date::min();
  }
  return Date(seconds);
}

}  // namespace

std::optional<Value> integerOfText(std::string_view text) {
  const bool isNegative = text.starts_with('-');
  if (isNegative || text.starts_with('+')) {
    text.remove_prefix(1);
  }
  const bool isHexadecimal = text.starts_with("0x") || text.starts_with("0X");
  if (isHexadecimal) {
    text.remove_prefix(2);
  }
  std::uint64_t magnitude = 0;
  const char* const end = text.data() + text.size();
  const auto [stop, problem] = std::from_chars(text.data(), end, magnitude, isHexadecimal ? 16 : 10);
  if (problem != std::errc() || stop != end) {
    return std::nullopt;
  }
  constexpr auto kLargest = static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max());
  if (!isNegative) {
    return magnitude <= kLargest ? Value(static_cast<std::int64_t>(magnitude))
                                 : Value(static_cast<double>(magnitude));
  }
  if (magnitude > kLargest + 1) {
    return std::nullopt;
  }
  return Value(static_cast<std::int64_t>(~magnitude + 1));
}

std::optional<double> realOfText(std::string_view text) {
  if (const auto named = namedReal(text)) {
    return named;
  }
  if (text.empty() || text.find_first_not_of("+-0123456789.eE") != std::string_view::npos) {
    return std::nullopt;
  }
  // The C library reads the decimal sign of its locale, which GNUstep takes from the user.
  std::string number(text);
  if (const std::size_t point = number.find('.'); point != std::string::npos) {
    number.replace(point, 1, std::localeconv()->decimal_point);
  }
  char* stop = nullptr;
  const double value = std::strtod(number.c_str(), &stop);
  if (stop != number.c_str() + number.size()) {
    return std::nullopt;
  }
  return value;
}

std::string textOfReal(double number) {
  if (std::isnan(number)) {
    return "nan";
  }
  if (std::isinf(number)) {
    return number > 0 ? "+infinity" : "-infinity";
  }
  return fmt::format("{}", number);
}

std::optional<Date> dateOfText(std::string_view text) {
  constexpr std::string_view kPattern = "dddd-dd-ddTdd:dd:ddZ";
  if (text.size() != kPattern.size()) {
    return std::nullopt;
  }
  for (std::size_t index = 0; index < text.size(); ++index) {
    const bool fits = kPattern[index] == 'd' ? isDigit(text[index]) : text[index] == kPattern[index];
    if (!fits) {
      return std::nullopt;
    }
  }
  const std::chrono::year_month_day day{std::chrono::year(numberAt(text, 0, 4)),
                                        std::chrono::month(static_cast<unsigned>(numberAt(text, 5, 2))),
                                        std::chrono::day(static_cast<unsigned>(numberAt(text, 8, 2)))};
  const int hour = numberAt(text, 11, 2);
  const int minute = numberAt(text, 14, 2);
  const int second = numberAt(text, 17, 2);
  if (!day.ok() || hour > 23 || minute > 59 || second > 59) {
    return std::nullopt;
  }
  return inRange(std::chrono::sys_days(day) + std::chrono::hours(hour) + std::chrono::minutes(minute) +
                 std::chrono::seconds(second));
}

std::string textOfDate(Date date) {
  const auto seconds = std::chrono::floor<std::chrono::seconds>(date);
  const auto days = std::chrono::floor<std::chrono::days>(seconds);
  const std::chrono::year_month_day day(days);
  const std::chrono::hh_mm_ss time(seconds - days);
  return fmt::format("{:04}-{:02}-{:02}T{:02}:{:02}:{:02}Z", int{day.year()}, unsigned{day.month()},
                     unsigned{day.day()}, time.hours().count(), time.minutes().count(),
                     time.seconds().count());
}

std::optional<Date> dateSince1970(double seconds) {
  const double nanoseconds = seconds * 1e9;
  if (std::isnan(nanoseconds)) {
    return std::nullopt;
  }
  constexpr auto kLimit = static_cast<double>(std::numeric_limits<std::int64_t>::max());
  if (std::abs(nanoseconds) >= kLimit) {
    return nanoseconds > 0 ? Date::max() : Date::min();
  }
  return Date(std::chrono::nanoseconds(std::llround(nanoseconds)));
}

std::optional<Value::Data> dataOfText(std::string_view text) {
  Value::Data data;
  data.reserve(text.size() / 4 * 3);
  unsigned bits = 0;
  unsigned bitCount = 0;
  bool isPadded = false;
  for (const char character : text) {
    if (character == ' ' || character == '\t' || character == '\n' || character == '\r') {
      continue;
    }
    if (character == '=') {
      isPadded = true;
      continue;
    }
    const std::size_t digit = kBase64Digits.find(character);
    if (isPadded || digit == std::string_view::npos) {
      return std::nullopt;
    }
    bits = (bits << 6 | static_cast<unsigned>(digit)) & 0xFFFFFF;
    bitCount += 6;
    if (bitCount >= 8) {
      bitCount -= 8;
      data.push_back(static_cast<std::byte>(bits >> bitCount & 0xFF));
    }
  }
  // A lone digit at the end carries six bits, too few for a byte.
  if (bitCount == 6) {
    return std::nullopt;
  }
  return data;
}

std::string textOfData(const Value::Data& data) {
  std::string text;
  text.reserve((data.size() + 2) / 3 * 4);
  for (std::size_t index = 0; index < data.size(); index += 3) {
    const std::size_t present = std::min<std::size_t>(3, data.size() - index);
    unsigned bits = 0;
    for (std::size_t byte = 0; byte < 3; ++byte) {
      bits = bits << 8 | (byte < present ? std::to_integer<unsigned>(data[index + byte]) : 0);
    }
    for (std::size_t digit = 0; digit < 4; ++digit) {
      text.push_back(digit <= present ? kBase64Digits[bits >> (18 - 6 * digit) & 0x3F] : '=');
    }
  }
  return text;
}

}  // namespace karno::platform::lists
