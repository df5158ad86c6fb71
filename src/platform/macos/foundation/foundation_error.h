#pragma once
#include "platform/cocoa/runtime/objc.h"
#include "platform/error.h"

namespace karno::platform {

// What an NSError says: its domain, its code and its localised description.
Error errorOf(objc::Id error);

}  // namespace karno::platform
