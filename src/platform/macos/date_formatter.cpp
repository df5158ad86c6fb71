#include "platform/macos/date_formatter.h"

#include <chrono>

#include "platform/cocoa/guarded.h"
#include "platform/cocoa/strings.h"

namespace karno::platform {

FoundationDateFormatter::FoundationDateFormatter(const std::string& pattern) {
  const objc::AutoreleasePool pool;
  formatter_ = objc::make("NSDateFormatter");
  const objc::Id locale = objc::send(objc::classNamed("NSLocale"), "autoupdatingCurrentLocale");
  const objc::Id timeZone = objc::send(objc::classNamed("NSTimeZone"), "localTimeZone");
  objc::send<void>(formatter_, "setLocale:", locale);
  objc::send<void>(formatter_, "setTimeZone:", timeZone);
  objc::send<void>(formatter_, "setDateFormat:", objc::string(pattern));
}

std::string FoundationDateFormatter::stringFromDate(Date date) const {
  const objc::AutoreleasePool pool;
  const double seconds = std::chrono::duration<double>(date.time_since_epoch()).count();
  const auto formatted = objc::guarded("formatting a date", [this, seconds] {
    const objc::Id moment = objc::send(objc::classNamed("NSDate"), "dateWithTimeIntervalSince1970:", seconds);
    const std::lock_guard lock(mutex_);
    return objc::text(objc::send(formatter_, "stringFromDate:", moment));
  });
  return formatted ? formatted.value() : std::string();
}

}  // namespace karno::platform
