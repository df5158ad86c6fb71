#include <objc/message.h>

#include "platform/cocoa/runtime/objc.h"

namespace karno::platform::objc {

// This runtime has no objc_msgSend: a message is carried by the method itself. Alone in its file: the tests link a
// function of their own instead, which looks at every message first.
detail::Function detail::messageFunction(Id receiver, Sel selector, bool /*returnsInMemory*/) {
  return reinterpret_cast<Function>(objc_msg_lookup(receiver, selector));
}

}  // namespace karno::platform::objc
