#include "platform/linux/text/plain_date_formatter.h"

#include <fmt/chrono.h>
#include <unicode/calendar.h>
#include <unicode/numsys.h>
#include <unicode/timezone.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdint>
#include <ctime>
#include <string_view>
#include <utility>

#include "platform/linux/text/host_time_zone.h"

namespace karno::platform {
namespace {

using Field = std::pair<std::string_view, std::string_view>;
constexpr std::array<Field, 7> kFields{
    {{"yyyy", "%Y"}, {"MM", "%m"}, {"dd", "%d"}, {"HH", "%H"}, {"mm", "%M"}, {"ss", "%S"}, {"ZZZ", "%z"}}};

bool standsForItself(char character) {
  const bool isLetter = (character >= 'a' && character <= 'z') || (character >= 'A' && character <= 'Z');
  return !isLetter && std::string_view("'%{}").find(character) == std::string_view::npos;
}

std::optional<std::string> formatOf(std::string_view pattern) {
  if (pattern.empty()) return std::nullopt;  // {fmt} has a format of its own for no format
  std::string format = "{:";
  while (!pattern.empty()) {
    const std::size_t run = std::min(pattern.find_first_not_of(pattern.front()), pattern.size());
    const auto field = std::find_if(kFields.begin(), kFields.end(), [&](const Field& candidate) {
      return candidate.first == pattern.substr(0, run);
    });
    if (field == kFields.end() && !standsForItself(pattern.front())) return std::nullopt;
    format += field == kFields.end() ? pattern.substr(0, run) : field->second;
    pattern.remove_prefix(run);
  }
  return format + "}";
}

// A locale's keywords may ask for other digits and another calendar.
bool hasPlainNumbers(const icu::Locale& locale) {
  UErrorCode status = U_ZERO_ERROR;
  const std::unique_ptr<icu::StringEnumeration> keywords(locale.createKeywords(status));
  const std::unique_ptr<icu::NumberingSystem> digits(icu::NumberingSystem::createInstance(locale, status));
  const std::unique_ptr<icu::StringEnumeration> calendars(
      icu::Calendar::getKeywordValuesForLocale("calendar", locale, true, status));
  if (U_FAILURE(status) || keywords != nullptr) return false;
  const char* const calendar = calendars->next(nullptr, status);
  return std::string_view(digits->getName()) == "latn" && calendar != nullptr &&
         std::string_view(calendar) == "gregorian";
}

std::chrono::seconds offsetOf(const icu::TimeZone& zone, std::chrono::sys_seconds moment) {
  UErrorCode status = U_ZERO_ERROR;
  std::int32_t standard = 0;
  std::int32_t saving = 0;
  const std::chrono::milliseconds since1970 = moment.time_since_epoch();
  zone.getOffset(static_cast<UDate>(since1970.count()), 0, standard, saving, status);
  return std::chrono::duration_cast<std::chrono::seconds>(std::chrono::milliseconds(standard + saving));
}

class PlainDateFormatter final : public DateFormatter {
 public:
  // `format` is {fmt}'s. Without a time zone it follows the machine's.
  PlainDateFormatter(std::string format, std::shared_ptr<const icu::TimeZone> zone)
      : format_(std::move(format)), zone_(std::move(zone)) {}

  std::string stringFromDate(Date date) const override {
    const auto moment = std::chrono::floor<std::chrono::seconds>(date);
    const auto zone = zone_ ? zone_ : HostTimeZone::instance().at(moment.time_since_epoch().count());
    const std::chrono::seconds offset = offsetOf(*zone, moment);
    std::tm local = fmt::gmtime(moment + offset);
    local.tm_gmtoff = offset.count();
    return fmt::format(fmt::runtime(format_), local);
  }

 private:
  const std::string format_;
  const std::shared_ptr<const icu::TimeZone> zone_;
};

}  // namespace

std::unique_ptr<DateFormatter> makePlainDateFormatter(const std::string& pattern, const icu::Locale& locale,
                                                      const std::optional<std::string>& timeZone) {
  std::optional<std::string> format = formatOf(pattern);
  if (!format || !hasPlainNumbers(locale)) return nullptr;
  std::shared_ptr<const icu::TimeZone> zone;
  if (timeZone) zone.reset(icu::TimeZone::createTimeZone(icu::UnicodeString::fromUTF8(*timeZone)));
  return std::make_unique<PlainDateFormatter>(std::move(*format), std::move(zone));
}

}  // namespace karno::platform
