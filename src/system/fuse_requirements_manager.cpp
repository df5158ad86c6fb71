#include "system/fuse_requirements_manager.h"

#include <algorithm>

#include "log/karno_log.h"
#include "platform/platform.h"

namespace karno {

FuseRequirementsManager& FuseRequirementsManager::instance() {
  static platform::NeverDestroyed<FuseRequirementsManager> manager;
  return *manager;
}

bool FuseRequirementsManager::doesMeetRequirementsForSystemCPU(std::string_view systemCPU,
                                                               std::string_view systemFuseVersion,
                                                               std::string_view systemOSVersion) const {
  const auto& options = FuseRequirement::allOptions();
  const bool isMet = std::any_of(options.begin(), options.end(), [&](const FuseRequirement& requirement) {
    return doesMeetRequirement(requirement, systemCPU, systemFuseVersion, systemOSVersion);
  });
  if (isMet) {
    KarnoLog::manager().logInfo("FuseRequirements: System requirements have been met");
  } else {
    KarnoLog::manager().logWarn("FuseRequirements: System requirements not met");
  }
  return isMet;
}

bool FuseRequirementsManager::doesMeetRequirement(const FuseRequirement& requirement,
                                                  std::string_view systemCPU,
                                                  std::string_view systemFuseVersion,
                                                  std::string_view systemOSVersion) const {
  const platform::Text& text = platform::host().text;
  return systemCPU == requirement.requiredCPU() &&
         text.compareNumerically(systemOSVersion, requirement.macMinVersion()) >= 0 &&
         text.compareNumerically(systemOSVersion, requirement.macMaxVersion()) <= 0 &&
         text.compareNumerically(systemFuseVersion, requirement.fuseVersion()) >= 0;
}

}  // namespace karno
