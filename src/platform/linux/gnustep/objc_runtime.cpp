#include <objc/message.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>

#include "platform/cocoa/runtime/objc.h"
#include "platform/linux/gnustep/message_observer.h"

namespace karno::platform::objc {
namespace {

std::atomic<MessageObserver> messageObserver = nullptr;

}  // namespace

void observeMessages(MessageObserver observer) { messageObserver.store(observer, std::memory_order_release); }

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
  const MessageObserver observer = messageObserver.load(std::memory_order_acquire);
  if (observer != nullptr) observer(receiver, selector);
  return reinterpret_cast<Function>(objc_msg_lookup(receiver, selector));
}

}  // namespace karno::platform::objc
