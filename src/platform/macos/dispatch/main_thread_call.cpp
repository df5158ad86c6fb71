#include "platform/cocoa/runtime/main_thread_call.h"

#include "platform/cocoa/runtime/callback.h"
#include "platform/cocoa/runtime/guarded.h"

namespace karno::platform::cocoa {

struct MainThreadCall::Native {
  explicit Native(Callback::Function function) : callback(std::move(function)) {}
  Callback callback;
};

MainThreadCall::MainThreadCall(std::function<void()> function)
    : native_(std::make_unique<Native>([function = std::move(function)](objc::Id) { function(); })) {}

MainThreadCall::~MainThreadCall() = default;

void MainThreadCall::request() noexcept {
  objc::guardedAndLogged("perform on the main thread", [this] {
    const objc::AutoreleasePool pool;
    const objc::Sel action = Callback::action();
    objc::send<void>(native_->callback.target(),
                     "performSelectorOnMainThread:withObject:waitUntilDone:", action, nullptr, false);
  });
}

}  // namespace karno::platform::cocoa
