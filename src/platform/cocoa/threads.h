#pragma once
#include <optional>

#include "platform/cocoa/objc.h"

namespace karno::platform::cocoa {

// Any thread.
bool isMainThread();

// Surrounds one piece of work on a thread of ours that may send messages: makes the thread known to GNUstep
// where that is needed, and collects what the work autoreleases.
class ThreadPoolScope {
 public:
  ThreadPoolScope();
  ~ThreadPoolScope();
  ThreadPoolScope(const ThreadPoolScope&) = delete;
  ThreadPoolScope& operator=(const ThreadPoolScope&) = delete;

 private:
  bool registered_;
  std::optional<objc::AutoreleasePool> pool_;
};

}  // namespace karno::platform::cocoa
