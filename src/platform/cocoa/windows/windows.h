#pragma once
#include <memory>

#include "platform/cocoa/windows/prompt_window.h"
#include "platform/windows.h"

namespace karno::platform::cocoa {

// The launcher's windows, NSWindow.
class CocoaWindows final : public Windows {
 public:
  PromptWindow& promptWindow() override { return promptWindow_; }
  std::unique_ptr<ProgressWindow> makeProgressWindow() override;

 private:
  CocoaPromptWindow promptWindow_;
};

}  // namespace karno::platform::cocoa
