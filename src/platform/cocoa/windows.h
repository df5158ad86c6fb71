#pragma once
#include <memory>
#include <vector>

#include "platform/windows.h"

namespace karno::platform::cocoa {

// The prompt window while it has no operation that puts it on the screen: its closing is announced, a native
// window is not made.
class CocoaPromptWindow final : public PromptWindow {
 public:
  void addWillCloseObserver(std::function<void()> handler) override;
  void removeWillCloseObservers() override;
  void close() override;

 private:
  struct Observer {
    std::function<void()> handler;
    bool removed = false;
  };

  // Shared, so that a handler that removes itself lives until it returns.
  std::vector<std::shared_ptr<Observer>> observers_;
};

class CocoaWindows final : public Windows {
 public:
  PromptWindow& promptWindow() override { return promptWindow_; }

 private:
  CocoaPromptWindow promptWindow_;
};

}  // namespace karno::platform::cocoa
