#include "platform/cocoa/windows/windows.h"

#include "platform/cocoa/windows/progress_window.h"

namespace karno::platform::cocoa {

std::unique_ptr<ProgressWindow> CocoaWindows::makeProgressWindow() {
  return std::make_unique<CocoaProgressWindow>();
}

}  // namespace karno::platform::cocoa
