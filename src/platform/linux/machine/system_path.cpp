#include "platform/system_path.h"

#include "platform/linux/machine/machine_root.h"

namespace karno::platform {

std::string systemPath(std::string_view path) {
  const std::string root = machineRoot();
  return (root == "/" ? std::string() : root) + std::string(path);
}

}  // namespace karno::platform
