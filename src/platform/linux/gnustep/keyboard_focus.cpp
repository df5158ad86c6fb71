#include "platform/linux/gnustep/keyboard_focus.h"

#include <dlfcn.h>

#include "platform/cocoa/runtime/objc.h"
#include "platform/linux/gnustep/method_replacement.h"
#include "platform/platform.h"

namespace karno::platform::cocoa {
namespace {

using objc::Id;
using objc::Sel;
using objc::send;

using XWindow = unsigned long;
using CurrentServer = Id (*)();
using InputFocus = int (*)(void* display, XWindow* focus, int* revertTo);

void (*originalDeactivate)(Id, Sel) = nullptr;

// Both are in libraries that GNUstep has loaded by the time a window is shown; null where another display
// server than X is at work.
template <class Function>
Function loaded(const char* name) {
  return reinterpret_cast<Function>(::dlsym(RTLD_DEFAULT, name));
}

XWindow windowWithFocus(Id server) {
  static const auto inputFocus = loaded<InputFocus>("XGetInputFocus");
  void* const display = inputFocus == nullptr ? nullptr : send<void*>(server, "serverDevice");
  if (display == nullptr) return 0;
  XWindow focus = 0;
  int revertTo = 0;
  inputFocus(display, &focus, &revertTo);
  return focus;
}

void activateIfFocused() {
  static const auto currentServer = loaded<CurrentServer>("GSCurrentServer");
  const Id application = send(objc::classNamed("NSApplication"), "sharedApplication");
  if (currentServer == nullptr || send<bool>(application, "isActive")) return;
  const Id server = currentServer();
  const XWindow focused = windowWithFocus(server);
  const Id windows = send(application, "windows");
  for (objc::UInteger index = 0; focused != 0 && index < send<objc::UInteger>(windows, "count"); ++index) {
    const Id window = send(windows, "objectAtIndex:", index);
    const auto number = send<objc::Integer>(window, "windowNumber");
    if (number <= 0 ||
        send<XWindow>(server, "windowDevice:", objc::CInt{static_cast<int>(number)}) != focused)
      continue;
    send<void>(application, "activateIgnoringOtherApps:", true);
    send<void>(window, "makeKeyWindow");
    return;
  }
}

// The focus comes once the window manager has shown the window.
void deactivate(Id application, Sel selector) {
  originalDeactivate(application, selector);
  host().dispatch.globalQueue(QueuePriority::Default).async([] {
    for (const double seconds : {0.1, 0.2, 0.4, 0.8, 1.6}) {
      host().dispatch.sleep(seconds);
      host().dispatch.mainEvents().async(activateIfFocused);
    }
  });
}

}  // namespace

void keepKeyboardFocus() {
  if (originalDeactivate == nullptr)
    originalDeactivate = replaceMethod(objc::classNamed("NSApplication"), "deactivate", deactivate);
}

}  // namespace karno::platform::cocoa
