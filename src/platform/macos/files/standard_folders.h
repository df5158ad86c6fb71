#pragma once
#include "platform/standard_folders.h"

namespace karno::platform {

// What Foundation's search paths say, tildes expanded.
class FoundationStandardFolders final : public StandardFolders {
 public:
  std::vector<std::string> inAllDomains(StandardFolder folder) const override;
  std::string localApplications() const override;
};

}  // namespace karno::platform
