#include "platform/linux/machine/machine_root.h"

#include <cstdlib>

#include "platform/posix/files/home.h"
#include "platform/system_path.h"

namespace karno::platform {
namespace {

std::string environmentFolder(const char* name) {
  const char* value = std::getenv(name);
  std::string folder = value == nullptr ? std::string() : std::string(value);
  while (folder.size() > 1 && folder.back() == '/') folder.pop_back();
  return folder;
}

std::string dataFolder() {
  const std::string folder = environmentFolder("XDG_DATA_HOME");
  // The base directory rules say that a relative path is to be ignored.
  return folder.starts_with('/') ? folder : homeFolder() + "/.local/share";
}

}  // namespace

std::string machineRoot() {
  const std::string root = environmentFolder("KARNO_MACHINE_ROOT");
  return root.empty() ? dataFolder() + "/karno/machine" : root;
}

std::string systemPath(std::string_view path) {
  const std::string root = machineRoot();
  return (root == "/" ? std::string() : root) + std::string(path);
}

}  // namespace karno::platform
