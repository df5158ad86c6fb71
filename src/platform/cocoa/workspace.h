#pragma once
#include "platform/workspace.h"

namespace karno::platform::cocoa {

// The file viewer, reached through NSWorkspace. How a URL is opened differs from system to system.
class CocoaWorkspace : public Workspace {
 public:
  void selectFile(const std::string& path, const std::string& rootFolder) final;
  std::vector<RunningApplication> runningApplications(const std::string& bundleIdentifier) final;
  void activateApplication(std::int32_t processIdentifier) final;
  std::vector<std::string> bundlePathsOfRunningApplications() final;
};

}  // namespace karno::platform::cocoa
