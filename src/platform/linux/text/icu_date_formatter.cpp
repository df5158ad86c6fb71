#include "platform/linux/text/icu_date_formatter.h"

#include <chrono>

#include "platform/linux/text/host_time_zone.h"

namespace karno::platform {
namespace {

std::unique_ptr<icu::SimpleDateFormat> makeFormat(const std::string& pattern, const icu::Locale& locale) {
  UErrorCode status = U_ZERO_ERROR;
  auto format =
      std::make_unique<icu::SimpleDateFormat>(icu::UnicodeString::fromUTF8(pattern), locale, status);
  return U_SUCCESS(status) ? std::move(format) : nullptr;
}

}  // namespace

IcuDateFormatter::IcuDateFormatter(const std::string& pattern, const icu::Locale& locale,
                                   const std::optional<std::string>& timeZone)
    : followsHost_(!timeZone), format_(makeFormat(pattern, locale)) {
  if (format_ != nullptr && timeZone) {
    format_->adoptTimeZone(icu::TimeZone::createTimeZone(icu::UnicodeString::fromUTF8(*timeZone)));
  }
}

std::string IcuDateFormatter::stringFromDate(Date date) const {
  const auto milliseconds = std::chrono::floor<std::chrono::milliseconds>(date).time_since_epoch();
  const auto seconds = std::chrono::floor<std::chrono::seconds>(milliseconds);

  const std::scoped_lock lock(mutex_);
  if (format_ == nullptr) return {};
  if (followsHost_) followHost(seconds.count());

  icu::UnicodeString text;
  format_->format(static_cast<UDate>(milliseconds.count()), text);
  std::string result;
  return text.toUTF8String(result);
}

void IcuDateFormatter::followHost(std::int64_t second) const {
  if (checkedSecond_ == second) return;
  checkedSecond_ = second;
  std::shared_ptr<const icu::TimeZone> zone = HostTimeZone::instance().at(second);
  if (zone == zone_ || zone == nullptr) return;
  format_->setTimeZone(*zone);
  zone_ = std::move(zone);
}

}  // namespace karno::platform
