#include "platform/macos/appkit/appkit_applications.h"

#include "platform/cocoa/runtime/guarded.h"
#include "platform/cocoa/runtime/strings.h"
#include "platform/cocoa/runtime/threads.h"

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

template <class Visit>
void forEach(objc::Id array, Visit visit) {
  const auto count = objc::send<objc::UInteger>(array, "count");
  for (objc::UInteger index = 0; index < count; ++index) visit(objc::send(array, "objectAtIndex:", index));
}

}  // namespace

std::vector<RunningApplication> runningApplicationsOfAppKit(const std::string& bundleIdentifier) {
  const cocoa::ThreadPoolScope scope;
  std::vector<RunningApplication> found;
  objc::guardedAndLogged("list running applications", [&] {
    const objc::Id applications =
        objc::send(objc::classNamed("NSRunningApplication"),
                   "runningApplicationsWithBundleIdentifier:", objc::string(bundleIdentifier));
    std::vector<RunningApplication> all;
    forEach(applications, [&all](objc::Id application) { all.push_back(applicationOf(application)); });
    found = std::move(all);
  });
  return found;
}

std::vector<std::string> bundlesOfRunningApplicationsOfAppKit() {
  const cocoa::ThreadPoolScope scope;
  std::vector<std::string> found;
  objc::guardedAndLogged("list running applications", [&] {
    const objc::Id workspace = objc::send(objc::classNamed("NSWorkspace"), "sharedWorkspace");
    forEach(objc::send(workspace, "runningApplications"), [&found](objc::Id application) {
      const objc::Id path = objc::send(objc::send(application, "bundleURL"), "path");
      if (path != nullptr) found.push_back(objc::text(path));
    });
  });
  return found;
}

}  // namespace karno::platform
