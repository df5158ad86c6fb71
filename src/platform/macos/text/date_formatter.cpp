#include "platform/macos/text/date_formatter.h"

#include <chrono>

#include "platform/cocoa/runtime/guarded.h"
#include "platform/cocoa/runtime/strings.h"
#include "platform/macos/foundation/guarded_answer.h"

namespace karno::platform {

FoundationDateFormatter::FoundationDateFormatter(const std::string& pattern) {
  const objc::AutoreleasePool pool;
  objc::guardedAndLogged("making a date formatter", [this, &pattern] {
    formatter_ = objc::make("NSDateFormatter");
    const objc::Id locale = objc::send(objc::classNamed("NSLocale"), "autoupdatingCurrentLocale");
    const objc::Id timeZone = objc::send(objc::classNamed("NSTimeZone"), "localTimeZone");
    objc::send<void>(formatter_, "setLocale:", locale);
    objc::send<void>(formatter_, "setTimeZone:", timeZone);
    objc::send<void>(formatter_, "setDateFormat:", objc::string(pattern));
  });
}

std::string FoundationDateFormatter::stringFromDate(Date date) const {
  const objc::AutoreleasePool pool;
  const double seconds = std::chrono::duration<double>(date.time_since_epoch()).count();
  return guardedAnswer("formatting a date", std::string(), [this, seconds] {
    const objc::Id moment = objc::send(objc::classNamed("NSDate"), "dateWithTimeIntervalSince1970:", seconds);
    const std::lock_guard lock(mutex_);
    return objc::text(objc::send(formatter_, "stringFromDate:", moment));
  });
}

}  // namespace karno::platform
