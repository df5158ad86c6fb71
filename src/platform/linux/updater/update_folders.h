#pragma once
#include "platform/linux/updater/update_services.h"

namespace karno::platform::updates {

inline constexpr const char* kUpdateFolderPrefix = ".karno-update-";

// Folders of mode 0700 in the folder that the bundle lies in.
class SiblingFolders final : public UpdateFolders {
 public:
  Result<std::string> makeFolderBeside(const std::string& bundle) override;
  void remove(const std::string& folder) override;
  void removeLeftoversBeside(const std::string& bundle) override;
};

}  // namespace karno::platform::updates
