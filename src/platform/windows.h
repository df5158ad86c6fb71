#pragma once
#include <functional>

namespace karno::platform {

// The launcher's one small window of its own. Main thread only.
class PromptWindow {
 public:
  virtual ~PromptWindow() = default;

  // Calls the handler whenever this window is about to close, once for every observation added.
  virtual void addWillCloseObserver(std::function<void()> handler) = 0;

  // Removes every observation of this window. Allowed from inside a handler.
  virtual void removeWillCloseObservers() = 0;

  // Closes the window, whether or not it was ever shown; the observers hear of it first.
  virtual void close() = 0;
};

class Windows {
 public:
  virtual ~Windows() = default;

  // Always the same window. The native window behind it is made when it is first needed on screen.
  virtual PromptWindow& promptWindow() = 0;
};

}  // namespace karno::platform
