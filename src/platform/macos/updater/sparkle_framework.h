#pragma once
#include <functional>

#include "platform/cocoa/runtime/objc.h"
#include "platform/error.h"

namespace karno::platform {

// What the updater framework makes for one updater.
struct SparkleObjects {
  objc::Object userDriver;
  objc::Object updater;
};

// Loads the framework from the main bundle, unless that was done before, and makes an updater of it with the
// standard windows. Both objects belong to the main bundle and take what `makeDelegate` gives, which is not
// known to be retained; it is asked once the framework has been loaded, which brings the protocols. Nothing
// is started. The error says what is missing. Main thread only.
Result<SparkleObjects> makeSparkleObjects(const std::function<objc::Object()>& makeDelegate);

}  // namespace karno::platform
