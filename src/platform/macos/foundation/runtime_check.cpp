#include "platform/cocoa/runtime_check.h"

namespace karno::platform {

RuntimeCheck& nativeRuntimeCheck() {
  static cocoa::CocoaRuntimeCheck check(objc::Where::MacOSOnly);
  return check;
}

}  // namespace karno::platform
