#pragma once
#include <objc/runtime.h>

#include "platform/cocoa/runtime/objc.h"

namespace karno::platform::cocoa {

// Puts a function in the place of a method that the class, or one above it, has. Answers the one it had
// before. For what GNUstep offers no setting for.
template <class Result, class... Arguments>
auto replaceMethod(Class owner, objc::Selector selector,
                   Result (*replacement)(objc::Id, objc::Sel, Arguments...)) {
  // By way of the type that stands for any function, since these have types of their own.
  using objc::detail::Function;
  const objc::Sel name = objc::registered(selector);
  const char* const encoding = method_getTypeEncoding(class_getInstanceMethod(owner, name));
  const auto added = reinterpret_cast<IMP>(reinterpret_cast<Function>(replacement));
  const auto before = reinterpret_cast<Function>(class_getMethodImplementation(owner, name));
  class_replaceMethod(owner, name, added, encoding);
  return reinterpret_cast<decltype(replacement)>(before);
}

}  // namespace karno::platform::cocoa
