#include <objc/message.h>

#include "platform/cocoa/runtime/objc.h"

namespace karno::platform::objc {

void startRuntime(int /*argc*/, char** /*argv*/) {}

detail::Function detail::messageFunction(Id /*receiver*/, Sel /*selector*/, bool returnsInMemory) {
#if defined(__x86_64__)
  if (returnsInMemory) {
    return reinterpret_cast<Function>(objc_msgSend_stret);
  }
#else
  static_cast<void>(returnsInMemory);
#endif
  return reinterpret_cast<Function>(objc_msgSend);
}

}  // namespace karno::platform::objc
