#pragma once
#include "platform/cocoa/runtime/objc.h"

namespace karno::platform::cocoa {

// The application's icon, NSImage. Read when first asked for: most starts show no window. Main thread only.
objc::Id applicationIcon();

}  // namespace karno::platform::cocoa
