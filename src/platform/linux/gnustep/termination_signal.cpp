#include "platform/linux/gnustep/termination_signal.h"

#include <signal.h>

#include "platform/cocoa/runtime/main_thread_call.h"
#include "platform/cocoa/runtime/objc.h"
#include "platform/never_destroyed.h"

namespace karno::platform::cocoa {
namespace {

void terminate() {
  const objc::Id application = objc::send(objc::classNamed("NSApplication"), "sharedApplication");
  objc::send<void>(application, "terminate:", nullptr);
}

// Stays until the process ends, since the signal can come until then.
MainThreadCall& terminateCall() {
  static NeverDestroyed<MainThreadCall> call(terminate);
  return call.get();
}

void onSignal(int) { terminateCall().request(); }

}  // namespace

void terminateOnSignal() {
  // Made here, so that the signal handler finds it made.
  terminateCall();
  struct sigaction action = {};
  action.sa_handler = onSignal;
  action.sa_flags = SA_RESTART;
  sigemptyset(&action.sa_mask);
  sigaction(SIGTERM, &action, nullptr);
}

}  // namespace karno::platform::cocoa
