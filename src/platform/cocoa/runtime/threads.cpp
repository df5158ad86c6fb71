#include "platform/cocoa/runtime/threads.h"

#include <dlfcn.h>

namespace karno::platform::cocoa {
namespace {

using ThreadFunction = objc::Boolean (*)();

// GNUstep wants to know of a thread that it did not make itself; macOS has no such functions and needs none.
ThreadFunction threadFunction(const char* name) {
  return reinterpret_cast<ThreadFunction>(dlsym(RTLD_DEFAULT, name));
}

// Known from a thread's first piece of work to its end; the main thread and GNUstep's own are known already.
class Registration {
 public:
  Registration() {
    static const ThreadFunction registerCurrent = threadFunction("GSRegisterCurrentThread");
    isOurs_ = registerCurrent != nullptr && registerCurrent() != 0;
  }
  Registration(const Registration&) = delete;
  Registration& operator=(const Registration&) = delete;
  ~Registration() {
    static const ThreadFunction unregisterCurrent = threadFunction("GSUnregisterCurrentThread");
    if (isOurs_ && unregisterCurrent != nullptr) {
      unregisterCurrent();
    }
  }

 private:
  bool isOurs_ = false;
};

// Before the pool: only a thread that is known has one.
objc::AutoreleasePool makePool() {
  thread_local const Registration registration;
  return {};
}

}  // namespace

bool isMainThread() { return objc::send<bool>(objc::classNamed("NSThread"), "isMainThread"); }

ThreadPoolScope::ThreadPoolScope() : pool_(makePool()) {}

}  // namespace karno::platform::cocoa
