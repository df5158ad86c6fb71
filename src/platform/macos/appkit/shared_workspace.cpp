#include "platform/cocoa/shared_workspace.h"

namespace karno::platform::cocoa {

objc::Id sharedWorkspace() { return objc::send(objc::classNamed("NSWorkspace"), "sharedWorkspace"); }

}  // namespace karno::platform::cocoa
