#pragma once
#include "platform/standard_folders.h"

namespace karno::platform {

// The user's home and the machine root.
class LinuxStandardFolders final : public StandardFolders {
 public:
  std::vector<std::string> inAllDomains(StandardFolder folder) const override;
  std::string localApplications() const override;
};

}  // namespace karno::platform
