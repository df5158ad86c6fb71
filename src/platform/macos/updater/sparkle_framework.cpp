#include "platform/macos/updater/sparkle_framework.h"

#include <optional>
#include <string>
#include <utility>

#include "platform/cocoa/runtime/guarded.h"
#include "platform/cocoa/runtime/strings.h"
#include "platform/macos/updater/sparkle_values.h"

namespace karno::platform {
namespace {

using objc::Id;
using objc::Object;
using objc::send;

constexpr std::string_view kFrameworkInBundle = "/Contents/Frameworks/Sparkle.framework";

Id mainBundle() { return send(objc::classNamed("NSBundle"), "mainBundle"); }

std::optional<Error> load() {
  const std::string path = objc::text(send(mainBundle(), "bundlePath")).append(kFrameworkInBundle);
  const Id framework = send(objc::classNamed("NSBundle"), "bundleWithPath:", objc::string(path));
  if (framework == nullptr) return sparkle::updaterError("There is no framework at " + path);
  Id error = nullptr;
  // A bundle that has been loaded before is left as it is, which is a success.
  if (send<bool>(framework, "loadAndReturnError:", &error)) return std::nullopt;
  if (error == nullptr) return sparkle::updaterError("The framework cannot be loaded: " + path);
  return sparkle::errorOf(error);
}

Result<SparkleObjects> make(const std::function<Object()>& makeDelegate) {
  if (const auto error = load()) return *error;
  const Class driverClass = objc::classNamed("SPUStandardUserDriver");
  const Class updaterClass = objc::classNamed("SPUUpdater");
  if (driverClass == nullptr || updaterClass == nullptr) {
    return sparkle::updaterError("The framework in the bundle has no SPUUpdater");
  }
  const Id bundle = mainBundle();
  const Object delegate = makeDelegate();
  SparkleObjects made;
  made.userDriver =
      Object::adopting(send(send(driverClass, "alloc"), "initWithHostBundle:delegate:", bundle, delegate));
  if (!made.userDriver) return sparkle::updaterError("The framework made no windows for this bundle");
  made.updater = Object::adopting(send(send(updaterClass, "alloc"),
                                       "initWithHostBundle:applicationBundle:userDriver:delegate:", bundle,
                                       bundle, made.userDriver, delegate));
  if (!made.updater) return sparkle::updaterError("The framework made no updater for this bundle");
  return made;
}

}  // namespace

Result<SparkleObjects> makeSparkleObjects(const std::function<Object()>& makeDelegate) {
  auto made = objc::guarded("making the updater", [&makeDelegate] { return make(makeDelegate); });
  return made ? std::move(made.value()) : made.error();
}

}  // namespace karno::platform
