#include "platform/cocoa/workspace.h"

#include "platform/cocoa/running_applications.h"
#include "platform/cocoa/runtime/guarded.h"
#include "platform/cocoa/runtime/strings.h"
#include "platform/cocoa/shared_workspace.h"

namespace karno::platform::cocoa {
namespace {

constexpr objc::UInteger kAllWindowsInFrontOfOtherApps = 1 | 2;

}  // namespace

void CocoaWorkspace::selectFile(const std::string& path, const std::string& rootFolder) {
  objc::guardedAndLogged("select a file", [&] {
    const objc::AutoreleasePool pool;
    objc::send<bool>(sharedWorkspace(), "selectFile:inFileViewerRootedAtPath:", objc::string(path),
                     objc::string(rootFolder));
  });
}

void CocoaWorkspace::activateApplication(std::int32_t processIdentifier) {
  objc::guardedAndLogged("activate an application", [processIdentifier] {
    const objc::AutoreleasePool pool;
    const objc::Id other =
        objc::send(objc::classNamed("NSRunningApplication"),
                   "runningApplicationWithProcessIdentifier:", objc::CInt{processIdentifier});
    if (other == nullptr) return;
    // Since macOS 14 an application comes to the front only where the one that is there makes way.
    const objc::Id self = objc::send(objc::classNamed("NSApplication"), "sharedApplication");
    if (objc::respondsTo(self, "yieldActivationToApplication:")) {
      objc::send<void>(self, "yieldActivationToApplication:", other);
    }
    objc::send<bool>(other, "activateWithOptions:", kAllWindowsInFrontOfOtherApps);
  });
}

std::vector<RunningApplication> CocoaWorkspace::runningApplications(const std::string& bundleIdentifier) {
  return runningApplicationsWithIdentifier(bundleIdentifier);
}

std::vector<std::string> CocoaWorkspace::bundlePathsOfRunningApplications() {
  return bundlesOfRunningApplications();
}

}  // namespace karno::platform::cocoa
