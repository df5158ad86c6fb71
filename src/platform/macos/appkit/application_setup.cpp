#include "platform/cocoa/application_setup.h"

#include "platform/cocoa/windows/main_menu.h"
#include "platform/platform.h"

extern "C" int NSApplicationMain(int argc, const char** argv);

namespace karno::platform::cocoa {

void prepareForApplication() {}

void prepareApplication() {
  objc::send<void>(objc::send(objc::classNamed("NSApplication"), "sharedApplication"),
                   "setMainMenu:", makeMainMenu(host().bundles.mainBundle()));
}

int runApplication(int argc, char** argv) { return NSApplicationMain(argc, const_cast<const char**>(argv)); }

}  // namespace karno::platform::cocoa
