#pragma once
#include "call_types.h"

// Put in front of the sources of platform/macos when they are built for tests: every message that they send
// is held against what the receiver's method declares. An argument of another width or kind than the method's
// often works by chance, since a register is wide enough for both; on the other processor it may not.
namespace karno::platform::objc {

template <class R = Id, class... Args>
R checkedSend(Receiver receiver, Selector selector, const Args&... args) {
  if (receiver.id() != nullptr) {
    trial::checkCall(receiver.id(), registered(selector),
                    ((trial::typeCode<detail::Wire<R>>() + "@:") + ... +
                     trial::typeCode<decltype(detail::argument(args))>()));
  }
  return send<R>(receiver, selector, args...);
}

}  // namespace karno::platform::objc

// The sources say send().
#define send checkedSend
