#pragma once
#include <string_view>

#include "platform/never_destroyed.h"
#include "system/fuse_requirement.h"

namespace karno {

// Says whether a system meets a row of the macFUSE table. Versions are compared by the platform's numeric
// string comparison, under which "13.0" comes before "13.0.0". Stateless; safe from any thread.
class FuseRequirementsManager {
 public:
  static FuseRequirementsManager& instance();

  // Whether any row is met; one line in the log says so.
  bool doesMeetRequirementsForSystemCPU(std::string_view systemCPU, std::string_view systemFuseVersion,
                                        std::string_view systemOSVersion) const;

  bool doesMeetRequirement(const FuseRequirement& requirement, std::string_view systemCPU,
                           std::string_view systemFuseVersion, std::string_view systemOSVersion) const;

 private:
  friend class platform::NeverDestroyed<FuseRequirementsManager>;
  FuseRequirementsManager() = default;
};

}  // namespace karno
