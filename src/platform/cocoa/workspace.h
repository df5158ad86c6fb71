#pragma once
#include "platform/workspace.h"

namespace karno::platform::cocoa {

// The file viewer, reached through NSWorkspace.
class CocoaWorkspace final : public Workspace {
 public:
  void selectFile(const std::string& path, const std::string& rootFolder) override;
};

}  // namespace karno::platform::cocoa
