#pragma once
#include <functional>
#include <memory>

namespace karno::platform::cocoa {

// Calls a function from the main thread's run loop, also while a modal alert is up: once for every request,
// soon after it. Made and destroyed on the main thread. What the function throws is written to the console
// log.
class MainThreadCall {
 public:
  explicit MainThreadCall(std::function<void()> function);
  ~MainThreadCall();
  MainThreadCall(const MainThreadCall&) = delete;
  MainThreadCall& operator=(const MainThreadCall&) = delete;

  // Any thread; on Linux also a signal handler.
  void request() noexcept;

  struct Native;

 private:
  std::unique_ptr<Native> native_;
};

}  // namespace karno::platform::cocoa
