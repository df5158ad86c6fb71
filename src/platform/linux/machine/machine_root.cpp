#include "platform/linux/machine/machine_root.h"

#include "platform/posix/environment.h"
#include "platform/posix/files/home.h"

namespace karno::platform {
namespace {

std::string withoutSlashesAtEnd(std::string folder) {
  while (folder.size() > 1 && folder.back() == '/') folder.pop_back();
  return folder;
}

std::string dataFolder() {
  const std::string folder = withoutSlashesAtEnd(environmentVariable("XDG_DATA_HOME"));
  // The base directory rules say that a relative path is to be ignored.
  return folder.starts_with('/') ? folder : homeFolder() + "/.local/share";
}

}  // namespace

std::string machineRoot() { return machineRootNamed(environmentVariable("KARNO_MACHINE_ROOT")); }

std::string machineRootNamed(std::string_view value) {
  return value.empty() ? dataFolder() + "/karno/machine" : withoutSlashesAtEnd(std::string(value));
}

}  // namespace karno::platform
