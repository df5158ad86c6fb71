#include "system/fuse_requirement.h"

#include <fmt/format.h>

#include <utility>

#include "platform/never_destroyed.h"

namespace karno {

FuseRequirement::FuseRequirement(std::string requiredCPU, std::string fuseVersion, std::string macMinVersion,
                                 std::string macMaxVersion)
    : requiredCPU_(std::move(requiredCPU)),
      fuseVersion_(std::move(fuseVersion)),
      macMinVersion_(std::move(macMinVersion)),
      macMaxVersion_(std::move(macMaxVersion)) {}

// 9999 stands for no upper limit, 1.0.0 for no lower one.
const std::vector<FuseRequirement>& FuseRequirement::allOptions() {
  static platform::NeverDestroyed<const std::vector<FuseRequirement>> options(
      std::vector<FuseRequirement>{{"arm64", "4.4.1", "13.0.0", "9999.9999.9999"},
                                   {"arm64", "4.0.4", "1.0.0", "12.9999.9999"},
                                   {"x86_64", "3.11.2", "1.0.0", "9999.9999.9999"}});
  return *options;
}

std::string FuseRequirement::description() const {
  return fmt::format("FuseRequirement(cpu:{}, Fuse:{}, macMin:{}, macMax:{})", requiredCPU_, fuseVersion_,
                     macMinVersion_, macMaxVersion_);
}

}  // namespace karno
