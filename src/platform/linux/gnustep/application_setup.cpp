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

// Xlib parses a file of 600 KB when its input method is opened, for letters that take several keys: a seventh
// of the time until the client runs, and nobody types letters into the launcher's windows.
constexpr const char* kComposeFile = "XCOMPOSEFILE";
bool isComposeFileLeftOut = false;

void leaveComposeFileOut() {
  if (std::getenv(kComposeFile) != nullptr) return;
  isComposeFileLeftOut = ::setenv(kComposeFile, "/dev/null", 1) == 0;
}

// The clients inherit the variables.
void takeComposeFileBackIn() {
  if (isComposeFileLeftOut) ::unsetenv(kComposeFile);
}

}  // namespace

void prepareForApplication() {
  // The application object raises without one, and an exception of its kind tells C++ nothing.
  if (std::getenv("DISPLAY") == nullptr) {
    throw std::runtime_error("there is no display (DISPLAY is not set)");
  }
  leaveComposeFileOut();
  becomeMultiThreaded();
  registerAppearance();
  installTheme();
  substituteFonts();
  useLauncherIcon();
  keepDesktopServicesAway();
  keepKeyboardFocus();
}

// Menus have no place on the screen. The input method is open by now.
void prepareApplication() { takeComposeFileBackIn(); }

// NSApplicationMain would do no more than this, after a complaint that the bundle's Info.plist, which it
// cannot find in a Mac's layout, names no principal class.
int runApplication(int /*argc*/, char** /*argv*/) {
  objc::send<void>(objc::send(objc::classNamed("NSApplication"), "sharedApplication"), "run");
  return 0;
}

}  // namespace karno::platform::cocoa
