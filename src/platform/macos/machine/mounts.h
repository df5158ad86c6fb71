#pragma once
#include "platform/mounts.h"

namespace karno::platform {

// statfs().
class MacMounts final : public Mounts {
 public:
  std::optional<MountInformation> informationOf(const std::string& path) const override;
};

}  // namespace karno::platform
