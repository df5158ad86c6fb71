#pragma once
#include "platform/mounts.h"

namespace karno::platform {

// The machine root is the root file system of its machine. The disk images that are mounted in it are those
// of var/machine/disk-images.plist, each mounted at the "mount-point" it has there; every other mount below
// it is one of Linux.
class LinuxMounts final : public Mounts {
 public:
  std::optional<MountInformation> informationOf(const std::string& path) const override;
};

}  // namespace karno::platform
