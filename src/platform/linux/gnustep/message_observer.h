#pragma once
#include "platform/cocoa/runtime/objc.h"

namespace karno::platform::objc {

// Is told of every message just before it is sent, on the thread that sends it. The receiver is never null.
using MessageObserver = void (*)(Id receiver, Sel selector);

// For tests, which hold what is really sent against the table. Null, as at first, for no observer.
void observeMessages(MessageObserver observer);

}  // namespace karno::platform::objc
