#pragma once
#include "platform/cocoa/runtime/objc.h"

namespace karno::platform::cocoa {

// The shared NSWorkspace, made when first asked for. Main thread only.
objc::Id sharedWorkspace();

}  // namespace karno::platform::cocoa
