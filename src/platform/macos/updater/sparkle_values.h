#pragma once
#include <string>
#include <string_view>

#include "platform/cocoa/runtime/objc.h"
#include "platform/updater.h"

// What the updater framework hands to its delegate, as values of the port. Any thread, inside an autorelease
// pool; what may be nil there may be null here.
namespace karno::platform::sparkle {

inline constexpr std::string_view kErrorDomain = "SUSparkleErrorDomain";
inline constexpr std::int64_t kUpdaterError = 5;  // SUInvalidUpdaterError

// An item without a version to show shows the one that is compared.
AppcastItem appcastItemOf(objc::Id item);

// The text of an NSURLRequest's URL.
std::string urlOf(objc::Id request);

// An error that the framework does not explain has kErrorDomain and code 0. Its texts, which may quote the
// feed, are one line each.
Error errorOf(objc::Id error);

// An error of ours in the framework's domain.
Error updaterError(std::string description);

}  // namespace karno::platform::sparkle
