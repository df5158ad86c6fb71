#include "platform/cocoa/windows/desktop.h"

#include <cstdlib>
#include <stdexcept>
#include <thread>

#include "platform/cocoa/runtime/strings.h"
#include "platform/cocoa/runtime/threads.h"
#include "platform/linux/gnustep/appearance.h"
#include "platform/linux/gnustep/desktop_services.h"
#include "platform/linux/gnustep/keyboard_focus.h"
#include "platform/linux/gnustep/termination_signal.h"
#include "platform/linux/gnustep/theme.h"
#include "platform/platform.h"

namespace karno::platform::cocoa {
namespace {

// The framework does not find the icon in a bundle of a Mac's layout. Without one its own picture stands.
objc::Object loadIcon() {
  const objc::AutoreleasePool pool;
  const auto path = host().bundles.mainBundle().pathForResource("karno", "png", "");
  if (!path) return {};
  const objc::Id allocated = objc::send(objc::classNamed("NSImage"), "alloc");
  return objc::Object::adopting(objc::send(allocated, "initWithContentsOfFile:", objc::string(*path)));
}

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
  keepDesktopServicesAway();
  keepKeyboardFocus();
}

// GNUstep's own handler runs terminate: inside the signal handler, on whatever thread the signal hit.
void prepareApplication() { terminateOnSignal(); }

// NSApplicationMain would do no more than this, after a complaint that the bundle's Info.plist, which it
// cannot find in a Mac's layout, names no principal class.
int runApplication(int /*argc*/, char** /*argv*/) {
  objc::send<void>(objc::send(objc::classNamed("NSApplication"), "sharedApplication"), "run");
  return 0;
}

objc::Id applicationIcon() {
  const objc::Id application = objc::send(objc::classNamed("NSApplication"), "sharedApplication");
  static const bool isSet = [application] {
    const objc::Object icon = loadIcon();
    if (icon) objc::send<void>(application, "setApplicationIconImage:", icon);
    return true;
  }();
  static_cast<void>(isSet);
  return objc::send(application, "applicationIconImage");
}

// GNUstep (gui 0.29) makes room for a window's picture anew when it learns what the window manager did to it.
// What was drawn before is gone then, the window stays black, and nothing is told that could be observed.
void drawAgain(const std::function<void()>& draw) {
  host().dispatch.globalQueue(QueuePriority::Default).async([draw] {
    for (const double seconds : {0.25, 0.75, 2.0}) {
      host().dispatch.sleep(seconds);
      host().dispatch.mainQueue().async(draw);
    }
  });
}

objc::Id sharedWorkspace() {
  allowWorkspace();
  return objc::send(objc::classNamed("NSWorkspace"), "sharedWorkspace");
}

}  // namespace karno::platform::cocoa
