#pragma once
#include "platform/workspace.h"

namespace karno::platform::cocoa {

// The file viewer, reached through NSWorkspace.
class CocoaWorkspace final : public Workspace {
 public:
  void selectFile(const std::string& path, const std::string& rootFolder) override;
  std::vector<RunningApplication> runningApplications(const std::string& bundleIdentifier) override;
};

}  // namespace karno::platform::cocoa
