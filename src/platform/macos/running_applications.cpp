#include "platform/macos/running_applications.h"

#include "platform/cocoa/guarded.h"
#include "platform/cocoa/strings.h"
#include "platform/cocoa/threads.h"

namespace karno::platform {
namespace {

RunningApplication applicationOf(objc::Id application) {
  RunningApplication answer{.processIdentifier = objc::send<int>(application, "processIdentifier"),
                            .bundleIdentifier = std::nullopt};
  if (const objc::Id identifier = objc::send(application, "bundleIdentifier")) {
    answer.bundleIdentifier = objc::text(identifier);
  }
  return answer;
}

}  // namespace

std::vector<RunningApplication> runningApplicationsOfAppKit(const std::string& bundleIdentifier) {
  const cocoa::ThreadPoolScope scope;
  std::vector<RunningApplication> found;
  objc::guardedAndLogged("list running applications", [&] {
    const objc::Id applications =
        objc::send(objc::classNamed("NSRunningApplication"),
                   "runningApplicationsWithBundleIdentifier:", objc::string(bundleIdentifier));
    const auto count = objc::send<objc::UInteger>(applications, "count");
    std::vector<RunningApplication> all;
    for (objc::UInteger index = 0; index < count; ++index) {
      all.push_back(applicationOf(objc::send(applications, "objectAtIndex:", index)));
    }
    found = std::move(all);
  });
  return found;
}

}  // namespace karno::platform
