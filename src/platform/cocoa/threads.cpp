#include "platform/cocoa/threads.h"

#include <dlfcn.h>

namespace karno::platform::cocoa {
namespace {

using ThreadFunction = objc::Boolean (*)();

// GNUstep wants to know of a thread that it did not make itself; macOS has no such functions and needs none.
ThreadFunction threadFunction(const char* name) {
  return reinterpret_cast<ThreadFunction>(dlsym(RTLD_DEFAULT, name));
}

bool registerThread() {
  static const ThreadFunction registerCurrent = threadFunction("GSRegisterCurrentThread");
  return registerCurrent != nullptr && registerCurrent() != 0;
}

void unregisterThread() {
  static const ThreadFunction unregisterCurrent = threadFunction("GSUnregisterCurrentThread");
  if (unregisterCurrent != nullptr) {
    unregisterCurrent();
  }
}

}  // namespace

bool isMainThread() { return objc::send<bool>(objc::classNamed("NSThread"), "isMainThread"); }

ThreadPoolScope::ThreadPoolScope() : registered_(registerThread()) { pool_.emplace(); }

ThreadPoolScope::~ThreadPoolScope() {
  pool_.reset();
  if (registered_) {
    unregisterThread();
  }
}

}  // namespace karno::platform::cocoa
