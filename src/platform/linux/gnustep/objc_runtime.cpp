#include <unistd.h>

#include <algorithm>

#include "platform/cocoa/runtime/objc.h"
#include "platform/cocoa/runtime/raised_exception.h"
#include "platform/linux/gnustep/method_replacement.h"

namespace karno::platform::objc {
namespace {

void (*originalRaise)(Id, Sel) = nullptr;

void noteAndRaise(Id exception, Sel selector) {
  noteRaised(exception);
  originalRaise(exception, selector);
}

}  // namespace

// GNUstep learns the program's name only: it would take the first argument for a document, and show an alert
// when it cannot open it before the application has launched.
void startRuntime(int argc, char** argv) {
  static const bool started = [&] {
    const AutoreleasePool pool;
    send<void>(classNamed("NSProcessInfo"), "initializeWithArguments:count:environment:", argv,
               CInt{std::min(argc, 1)}, environ);
    originalRaise = cocoa::replaceMethod(classNamed("NSException"), "raise", noteAndRaise);
    return true;
  }();
  static_cast<void>(started);
}

}  // namespace karno::platform::objc
