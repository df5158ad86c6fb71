#include "platform/cocoa/desktop.h"

#include <cstdlib>
#include <stdexcept>

#include "platform/linux/appearance.h"
#include "platform/linux/desktop_services.h"
#include "platform/linux/termination_signal.h"

namespace karno::platform::cocoa {

void prepareForApplication() {
  // The application object raises without one, and an exception of its kind tells C++ nothing.
  if (std::getenv("DISPLAY") == nullptr) {
    throw std::runtime_error("there is no display (DISPLAY is not set)");
  }
  registerAppearance();
  keepDesktopServicesAway();
}

// GNUstep's own handler runs terminate: inside the signal handler, on whatever thread the signal hit.
void prepareApplication() { terminateOnSignal(); }

// NSApplicationMain would do no more than this, after a complaint that the bundle's Info.plist, which it
// cannot find in a Mac's layout, names no principal class.
int runApplication(int /*argc*/, char** /*argv*/) {
  objc::send<void>(objc::send(objc::classNamed("NSApplication"), "sharedApplication"), "run");
  return 0;
}

objc::Id sharedWorkspace() {
  allowWorkspace();
  return objc::send(objc::classNamed("NSWorkspace"), "sharedWorkspace");
}

}  // namespace karno::platform::cocoa
