#include "log/date_texts.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <memory>
#include <string_view>

#include "platform/never_destroyed.h"
#include "platform/platform.h"

namespace karno {
namespace {

using platform::Date;
using platform::DateFormatter;
using platform::NeverDestroyed;

// A log line's date changes only in its milliseconds from one line to the next. All but them is rendered once
// a second, in one go, with a mark where they belong.
constexpr char kMark = '|';
constexpr const char* kSecondPattern = "yyyy-MM-dd HH:mm:ss:|ZZZ";

struct LogSecond {
  std::chrono::sys_seconds start{std::chrono::seconds::min()};
  std::string upToSeconds;
  std::string zone;
  std::array<std::string, 10> digits;  // the locale's own
};

// The digits of the seconds are those of the milliseconds: it takes no formatter to see that a locale has
// none of its own.
bool hasPlainDigits(std::string_view upToSeconds) {
  return std::all_of(upToSeconds.begin(), upToSeconds.end(),
                     [](char byte) { return static_cast<unsigned char>(byte) < 0x80; });
}

std::string localDigit(std::chrono::sys_seconds start, std::size_t digit) {
  static NeverDestroyed<std::unique_ptr<DateFormatter>> tenths(platform::host().text.makeDateFormatter("S"));
  return (*tenths)->stringFromDate(Date(start) + std::chrono::milliseconds(100 * digit));
}

LogSecond renderLogSecond(std::chrono::sys_seconds start) {
  static NeverDestroyed<std::unique_ptr<DateFormatter>> formatter(
      platform::host().text.makeDateFormatter(kSecondPattern));
  const std::string text = (*formatter)->stringFromDate(start);
  const std::size_t mark = std::min(text.find(kMark), text.size());
  LogSecond second{.start = start,
                   .upToSeconds = text.substr(0, mark),
                   .zone = text.substr(std::min(mark + 1, text.size())),
                   .digits = {}};
  const bool isPlain = hasPlainDigits(second.upToSeconds);
  for (std::size_t digit = 0; digit < second.digits.size(); ++digit) {
    second.digits[digit] = isPlain ? std::to_string(digit) : localDigit(start, digit);
  }
  return second;
}

}  // namespace

void appendLogDate(std::string& text, Date date) {
  thread_local LogSecond second;

  const auto start = std::chrono::floor<std::chrono::seconds>(date);
  if (second.start != start) second = renderLogSecond(start);

  const auto milliseconds =
      static_cast<std::size_t>(std::chrono::floor<std::chrono::milliseconds>(date - start).count());
  text += second.upToSeconds;
  text += second.digits[milliseconds / 100];
  text += second.digits[milliseconds / 10 % 10];
  text += second.digits[milliseconds % 10];
  text += second.zone;
}

std::string stringForLogDate(Date date) {
  std::string text;
  appendLogDate(text, date);
  return text;
}

std::string timestampForDate(Date date) {
  static NeverDestroyed<std::unique_ptr<DateFormatter>> formatter(
      platform::host().text.makeDateFormatter("yyyyMMddHHmmssSSS"));
  return (*formatter)->stringFromDate(date);
}

std::string formattedDateTime(Date date) {
  static NeverDestroyed<std::unique_ptr<DateFormatter>> formatter(
      platform::host().text.makeDateFormatter("dd MMM yyyy HH:mm:ss"));
  return (*formatter)->stringFromDate(date);
}

}  // namespace karno
