#include "platform/cocoa/desktop.h"

extern "C" int NSApplicationMain(int argc, const char** argv);

namespace karno::platform::cocoa {

void prepareForApplication() {}

void prepareApplication() {}

int runApplication(int argc, char** argv) { return NSApplicationMain(argc, const_cast<const char**>(argv)); }

objc::Id applicationIcon() {
  return objc::send(objc::send(objc::classNamed("NSApplication"), "sharedApplication"),
                    "applicationIconImage");
}

objc::Id sharedWorkspace() { return objc::send(objc::classNamed("NSWorkspace"), "sharedWorkspace"); }

}  // namespace karno::platform::cocoa
