#include <objc/message.h>
#include <unistd.h>

#include "platform/cocoa/objc.h"

namespace karno::platform::objc {

void startRuntime(int argc, char** argv) {
  static const bool started = [&] {
    const AutoreleasePool pool;
    send<void>(classNamed("NSProcessInfo"), "initializeWithArguments:count:environment:", argv, CInt{argc},
               environ);
    return true;
  }();
  static_cast<void>(started);
}

// This runtime has no objc_msgSend: a message is carried by the method itself.
detail::Function detail::messageFunction(Id receiver, Sel selector, bool /*returnsInMemory*/) {
  return reinterpret_cast<Function>(objc_msg_lookup(receiver, selector));
}

}  // namespace karno::platform::objc
