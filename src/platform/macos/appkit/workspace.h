#pragma once
#include "platform/cocoa/workspace.h"

namespace karno::platform {

// Hands URLs to NSWorkspace, which any thread may use. What is no URL is told on the console log.
class MacWorkspace final : public cocoa::CocoaWorkspace {
 public:
  void openURL(const std::string& url) override;
};

}  // namespace karno::platform
