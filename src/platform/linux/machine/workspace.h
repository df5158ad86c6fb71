#pragma once
#include "platform/cocoa/workspace.h"
#include "platform/tasks.h"

namespace karno::platform {

// Hands URLs to the machine root's "open": NSWorkspace of GNUstep gui 0.29 does not come back from a URL
// whose scheme nobody handles. What is no URL, and an "open" that cannot be started, is told on the console
// log.
class LinuxWorkspace final : public cocoa::CocoaWorkspace {
 public:
  explicit LinuxWorkspace(Tasks& tasks) : tasks_(tasks) {}
  void openURL(const std::string& url) override;

 private:
  Tasks& tasks_;
};

}  // namespace karno::platform
