#pragma once
#include <objc/runtime.h>

#include <chrono>

#include "platform/cocoa/runtime/objc.h"

namespace karno::test {

// Lets the main thread's run loop turn until the condition holds or that long.
template <class Condition>
void turnRunLoop(Condition condition, std::chrono::milliseconds limit) {
  namespace objc = platform::objc;
  const objc::Id loop = objc::send(objc::classNamed("NSRunLoop"), "currentRunLoop");
  const objc::Sel runUntil = sel_registerName("runUntilDate:");
  const auto giveUpAt = std::chrono::steady_clock::now() + limit;
  while (!condition() && std::chrono::steady_clock::now() < giveUpAt) {
    const objc::AutoreleasePool pool;
    const double now =
        std::chrono::duration<double>(std::chrono::system_clock::now().time_since_epoch()).count();
    const objc::Id soon =
        objc::send(objc::classNamed("NSDate"), "dateWithTimeIntervalSince1970:", now + 0.01);
    using Run = void (*)(objc::Id, objc::Sel, objc::Id);
    reinterpret_cast<Run>(objc::detail::messageFunction(loop, runUntil, false))(loop, runUntil, soon);
  }
}

}  // namespace karno::test
