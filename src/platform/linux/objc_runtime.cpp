#include <objc/message.h>
#include <unistd.h>

#include <algorithm>

#include "platform/cocoa/objc.h"

namespace karno::platform::objc {

// GNUstep learns the program's name only: it would take the first argument for a document, and show an alert
// when it cannot open it before the application has launched.
void startRuntime(int argc, char** argv) {
  static const bool started = [&] {
    const AutoreleasePool pool;
    send<void>(classNamed("NSProcessInfo"), "initializeWithArguments:count:environment:", argv,
               CInt{std::min(argc, 1)}, environ);
    return true;
  }();
  static_cast<void>(started);
}

// This runtime has no objc_msgSend: a message is carried by the method itself.
detail::Function detail::messageFunction(Id receiver, Sel selector, bool /*returnsInMemory*/) {
  return reinterpret_cast<Function>(objc_msg_lookup(receiver, selector));
}

}  // namespace karno::platform::objc
