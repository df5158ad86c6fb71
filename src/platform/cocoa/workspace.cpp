#include "platform/cocoa/workspace.h"

#include "platform/cocoa/running_applications.h"
#include "platform/cocoa/runtime/guarded.h"
#include "platform/cocoa/runtime/strings.h"
#include "platform/cocoa/shared_workspace.h"

namespace karno::platform::cocoa {

void CocoaWorkspace::selectFile(const std::string& path, const std::string& rootFolder) {
  objc::guardedAndLogged("select a file", [&] {
    const objc::AutoreleasePool pool;
    objc::send<bool>(sharedWorkspace(), "selectFile:inFileViewerRootedAtPath:", objc::string(path),
                     objc::string(rootFolder));
  });
}

std::vector<RunningApplication> CocoaWorkspace::runningApplications(const std::string& bundleIdentifier) {
  return runningApplicationsWithIdentifier(bundleIdentifier);
}

std::vector<std::string> CocoaWorkspace::bundlePathsOfRunningApplications() {
  return bundlesOfRunningApplications();
}

}  // namespace karno::platform::cocoa
