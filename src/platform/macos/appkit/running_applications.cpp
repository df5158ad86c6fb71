#include "platform/cocoa/running_applications.h"

#include "platform/macos/appkit/appkit_applications.h"

namespace karno::platform::cocoa {

std::vector<RunningApplication> runningApplicationsWithIdentifier(const std::string& bundleIdentifier) {
  return runningApplicationsOfAppKit(bundleIdentifier);
}

std::vector<std::string> bundlesOfRunningApplications() { return bundlesOfRunningApplicationsOfAppKit(); }

}  // namespace karno::platform::cocoa
