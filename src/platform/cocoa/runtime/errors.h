#pragma once
#include "platform/cocoa/runtime/objc.h"
#include "platform/error.h"

namespace karno::platform::cocoa {

// NSError as platform::Error. Texts of its user information stay as they are, other objects become what they
// say of themselves; the localised description is always there. Null gives `otherwise`. Any thread, inside an
// autorelease pool.
Error errorOf(objc::Id error, Error otherwise);

}  // namespace karno::platform::cocoa
