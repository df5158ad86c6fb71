#include "platform/macos/machine/mounts.h"

#include <sys/mount.h>
#include <sys/param.h>

namespace karno::platform {

std::optional<MountInformation> MacMounts::informationOf(const std::string& path) const {
  struct statfs information = {};
  if (::statfs(path.c_str(), &information) != 0) return std::nullopt;
  return MountInformation{.sourceDevice = information.f_mntfromname,
                          .isRootFileSystem = (information.f_flags & MNT_ROOTFS) != 0};
}

}  // namespace karno::platform
