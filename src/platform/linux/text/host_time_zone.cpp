#include "platform/linux/text/host_time_zone.h"

#include <sys/stat.h>
#include <time.h>
#include <unicode/simpletz.h>

#include <cstdlib>
#include <string_view>

#include "platform/never_destroyed.h"

namespace karno::platform {
namespace {

constexpr std::int32_t kMillisecondsPerSecond = 1000;

// Nullptr for what is none of the zones in ICU's tables. Their names are looked up there by hand: where a
// name has digits in it ICU does not take it from the variable, and where it reads them as an offset it means
// the opposite of POSIX.
std::shared_ptr<const icu::TimeZone> namedZone(std::string_view variable) {
  if (variable.starts_with(':')) variable.remove_prefix(1);
  const auto name = icu::UnicodeString::fromUTF8(
      icu::StringPiece(variable.data(), static_cast<std::int32_t>(variable.size())));
  icu::UnicodeString canonical;
  UBool isSystemID = 0;
  UErrorCode status = U_ZERO_ERROR;
  icu::TimeZone::getCanonicalID(name, canonical, isSystemID, status);
  if (U_FAILURE(status) || isSystemID == 0) return nullptr;
  return std::shared_ptr<const icu::TimeZone>(icu::TimeZone::createTimeZone(name));
}

// What the C library makes of TZ at that moment, with daylight saving time.
std::int32_t secondsEastOfGreenwich(std::int64_t second) {
  const time_t moment = second;
  struct tm local = {};
  return ::localtime_r(&moment, &local) == nullptr ? 0 : static_cast<std::int32_t>(local.tm_gmtoff);
}

}  // namespace

HostTimeZone& HostTimeZone::instance() {
  static NeverDestroyed<HostTimeZone> zone;
  return zone.get();
}

std::shared_ptr<const icu::TimeZone> HostTimeZone::at(std::int64_t second) {
  const std::scoped_lock lock(mutex_);
  Setting setting = settingNow();
  if (!isKnown_ || setting != setting_) {
    isKnown_ = true;
    setting_ = std::move(setting);
    zone_ = zoneOfSetting();
    offsetZone_ = nullptr;
  }
  return zone_ == nullptr ? offsetZoneAt(second) : zone_;
}

std::shared_ptr<const icu::TimeZone> HostTimeZone::zoneOfSetting() const {
  if (!setting_.variable) {
    return std::shared_ptr<const icu::TimeZone>(icu::TimeZone::detectHostTimeZone());
  }
  ::tzset();  // localtime_r() does that only once
  return namedZone(*setting_.variable);
}

std::shared_ptr<const icu::TimeZone> HostTimeZone::offsetZoneAt(std::int64_t second) {
  const std::int32_t offset = secondsEastOfGreenwich(second) * kMillisecondsPerSecond;
  if (offsetZone_ == nullptr || offsetZone_->getRawOffset() != offset) {
    offsetZone_ = std::make_shared<const icu::SimpleTimeZone>(offset, icu::UnicodeString());
  }
  return offsetZone_;
}

HostTimeZone::Setting HostTimeZone::settingNow() {
  Setting setting;
  if (const char* variable = std::getenv("TZ")) setting.variable = variable;

  struct stat status = {};
  if (::stat("/etc/localtime", &status) == 0) {
    setting.device = status.st_dev;
    setting.inode = status.st_ino;
    setting.modifiedSeconds = status.st_mtim.tv_sec;
    setting.modifiedNanoseconds = status.st_mtim.tv_nsec;
  }
  return setting;
}

}  // namespace karno::platform
