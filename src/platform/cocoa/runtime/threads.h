#pragma once
#include "platform/cocoa/runtime/objc.h"

namespace karno::platform::cocoa {

// Any thread.
bool isMainThread();

// Surrounds one piece of work on a thread of ours that may send messages: makes the thread known to GNUstep
// where that is needed, and collects what the work autoreleases.
class ThreadPoolScope {
 public:
  ThreadPoolScope();

 private:
  objc::AutoreleasePool pool_;
};

}  // namespace karno::platform::cocoa
