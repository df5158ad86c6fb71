#pragma once
#include <optional>

#include "platform/cocoa/objc.h"
#include "platform/error.h"

namespace karno::platform {

// What the updater framework makes for one updater.
struct SparkleObjects {
  objc::Object userDriver;
  objc::Object updater;
};

// Loads the framework from the main bundle, unless that was done before, and makes an updater of it with the
// standard windows. Both objects belong to the main bundle and take `delegate`, which is not known to be
// retained. Nothing is started. The error says what is missing. Main thread only.
Result<SparkleObjects> makeSparkleObjects(const objc::Object& delegate);

}  // namespace karno::platform
