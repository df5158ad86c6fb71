#pragma once
#include <functional>

#include "platform/cocoa/runtime/objc.h"

namespace karno::platform::cocoa {

// An Objective-C object with one method of one argument that calls a C++ function: the target of a button,
// the observer of a notification, the receiver of a perform. What the function throws is written to the
// console log. Whoever sends to target() does so on the thread that also destroys this, which the function
// itself may do; messages that come later do nothing.
class Callback {
 public:
  using Function = std::function<void(objc::Id argument)>;

  explicit Callback(Function function);
  ~Callback();
  Callback(const Callback&) = delete;
  Callback& operator=(const Callback&) = delete;

  const objc::Object& target() const { return target_; }
  static objc::Sel action();

 private:
  Function function_;
  objc::Object target_;
};

}  // namespace karno::platform::cocoa
