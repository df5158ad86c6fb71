#include "platform/cocoa/runtime/callback.h"

#include "platform/cocoa/runtime/class_builder.h"

namespace karno::platform::cocoa {
namespace {

constexpr const char* kAction = "karnoCall:";

void call(objc::Id self, objc::Id argument) {
  const auto* const function = static_cast<const Callback::Function*>(objc::stateOf(self));
  if (function != nullptr) {
    // A copy: the function may destroy its Callback while it runs.
    const Callback::Function running = *function;
    running(argument);
  }
}

Class callbackClass() {
  static const Class made = objc::ClassBuilder("KarnoCallback", objc::classNamed("NSObject"))
                                .state()
                                .method<call>(kAction)
                                .registerClass();
  return made;
}

}  // namespace

Callback::Callback(Function function)
    : function_(std::move(function)),
      target_(objc::Object::adopting(objc::send(objc::send(callbackClass(), "alloc"), "init"))) {
  objc::setState(target_.get(), &function_);
}

Callback::~Callback() { objc::setState(target_.get(), nullptr); }

objc::Sel Callback::action() { return objc::selectorOf(kAction); }

}  // namespace karno::platform::cocoa
