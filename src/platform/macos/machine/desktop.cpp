#include "platform/cocoa/windows/desktop.h"
#include "platform/cocoa/running_applications.h"
#include "platform/macos/machine/running_applications.h"

extern "C" int NSApplicationMain(int argc, const char** argv);

namespace karno::platform::cocoa {

void prepareForApplication() {}

void prepareApplication() {}

int runApplication(int argc, char** argv) { return NSApplicationMain(argc, const_cast<const char**>(argv)); }

objc::Id applicationIcon() {
  return objc::send(objc::send(objc::classNamed("NSApplication"), "sharedApplication"),
                    "applicationIconImage");
}

void drawAgain(const std::function<void()>& /*draw*/) {}

objc::Id sharedWorkspace() { return objc::send(objc::classNamed("NSWorkspace"), "sharedWorkspace"); }

std::vector<RunningApplication> runningApplicationsWithIdentifier(const std::string& bundleIdentifier) {
  return runningApplicationsOfAppKit(bundleIdentifier);
}

std::vector<std::string> bundlesOfRunningApplications() { return bundlesOfRunningApplicationsOfAppKit(); }

}  // namespace karno::platform::cocoa
