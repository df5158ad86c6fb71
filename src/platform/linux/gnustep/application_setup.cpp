#include "platform/cocoa/application_setup.h"

#include <cstdlib>
#include <stdexcept>
#include <thread>

#include "platform/cocoa/runtime/threads.h"
#include "platform/linux/gnustep/appearance.h"
#include "platform/linux/gnustep/desktop_services.h"
#include "platform/linux/gnustep/font_substitution.h"
#include "platform/linux/gnustep/keyboard_focus.h"
#include "platform/linux/gnustep/launcher_icon.h"
#include "platform/linux/gnustep/theme.h"

namespace karno::platform::cocoa {
namespace {

// GNUstep's text drawing changes its ways when the first other thread becomes known to it, and calls into
// nothing when the main thread is drawing at that moment. So a thread becomes known before there is anything
// to draw.
void becomeMultiThreaded() {
  std::thread([] { const ThreadPoolScope known; }).join();
}

}  // namespace

void prepareForApplication() {
  // The application object raises without one, and an exception of its kind tells C++ nothing.
  if (std::getenv("DISPLAY") == nullptr) {
    throw std::runtime_error("there is no display (DISPLAY is not set)");
  }
  becomeMultiThreaded();
  registerAppearance();
  installTheme();
  substituteFonts();
  useLauncherIcon();
  keepDesktopServicesAway();
  keepKeyboardFocus();
}

// Menus have no place on the screen.
void prepareApplication() {}

// NSApplicationMain would do no more than this, after a complaint that the bundle's Info.plist, which it
// cannot find in a Mac's layout, names no principal class.
int runApplication(int /*argc*/, char** /*argv*/) {
  objc::send<void>(objc::send(objc::classNamed("NSApplication"), "sharedApplication"), "run");
  return 0;
}

}  // namespace karno::platform::cocoa
