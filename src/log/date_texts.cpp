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

// A log line's date changes only in its milliseconds from one line to the next. The pattern is kept in three
// pieces, which the formatter renders to the same text as the whole, so that the slow two are rendered
// rarely.
class LogDateFormatter {
 public:
  struct Second {
    std::chrono::sys_seconds start{std::chrono::seconds::min()};
    std::string upToSeconds;
    std::string zone;
    std::array<std::string, 10> digits;  // the locale's own
  };

  Second render(std::chrono::sys_seconds start) const {
    Second second{.start = start,
                  .upToSeconds = upToSeconds_->stringFromDate(start),
                  .zone = zone_->stringFromDate(start),
                  .digits = {}};
    const bool hasPlainDigits = isPlain(second.upToSeconds);
    for (std::size_t digit = 0; digit < second.digits.size(); ++digit) {
      second.digits[digit] = hasPlainDigits ? std::to_string(digit) : localDigit(start, digit);
    }
    return second;
  }

 private:
  // The digits of the seconds are those of the milliseconds: it takes no formatter to see that a locale has
  // none of its own.
  static bool isPlain(std::string_view text) {
    return std::all_of(text.begin(), text.end(),
                       [](char byte) { return static_cast<unsigned char>(byte) < 0x80; });
  }

  std::string localDigit(std::chrono::sys_seconds start, std::size_t digit) const {
    return tenths_->stringFromDate(Date(start) + std::chrono::milliseconds(100 * digit));
  }

  static std::unique_ptr<DateFormatter> make(const char* pattern) {
    return platform::host().text.makeDateFormatter(pattern);
  }

  std::unique_ptr<DateFormatter> upToSeconds_ = make("yyyy-MM-dd HH:mm:ss:");
  std::unique_ptr<DateFormatter> tenths_ = make("S");
  std::unique_ptr<DateFormatter> zone_ = make("ZZZ");
};

}  // namespace

void appendLogDate(std::string& text, Date date) {
  static NeverDestroyed<LogDateFormatter> formatter;
  thread_local LogDateFormatter::Second second;

  const auto start = std::chrono::floor<std::chrono::seconds>(date);
  if (second.start != start) second = formatter->render(start);

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
