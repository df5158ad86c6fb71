#include "platform/linux/machine/mounts.h"

#include <cstdlib>
#include <filesystem>
#include <sstream>
#include <system_error>
#include <utility>
#include <vector>

#include "platform/linux/files/property_list_file.h"
#include "platform/linux/machine/machine_root.h"
#include "platform/posix/files/whole_file.h"
#include "platform/system_path.h"

namespace karno::platform {
namespace {

namespace fs = std::filesystem;

struct Mount {
  std::string device;
  std::string place;
};

bool isAtOrBelow(const std::string& path, const std::string& folder) {
  return folder == "/" || path == folder || path.starts_with(folder + "/");
}

// The kernel writes blanks and the like as "\040".
std::string unescaped(const std::string& field) {
  std::string text;
  for (std::size_t i = 0; i < field.size(); ++i) {
    if (field[i] == '\\' && i + 3 < field.size()) {
      text += static_cast<char>(std::strtol(field.substr(i + 1, 3).c_str(), nullptr, 8));
      i += 3;
    } else {
      text += field[i];
    }
  }
  return text;
}

// A line of mountinfo, see proc(5): the place is the 5th field, the device the second one after the "-".
Mount mountOfLine(const std::string& line) {
  std::istringstream fields(line);
  std::string field;
  Mount mount;
  for (int i = 0; i < 5; ++i) fields >> field;
  mount.place = unescaped(field);
  while (fields >> field && field != "-") continue;
  fields >> field >> mount.device;
  mount.device = unescaped(mount.device);
  return mount;
}

// The mount that holds the path, which is absolute and without links: the innermost, and of several at one
// place the last. A process whose root folder is no mount point of its own is not told of the one it lies in.
std::optional<Mount> kernelMountOf(const std::string& path) {
  const Result<WholeFile> table = readWholeFile("/proc/self/mountinfo");
  if (!table) return std::nullopt;
  std::optional<Mount> innermost = Mount{.device = "none", .place = "/"};
  std::istringstream lines(table.value().bytes);
  for (std::string line; std::getline(lines, line);) {
    Mount mount = mountOfLine(line);
    if (!isAtOrBelow(path, mount.place)) continue;
    if (mount.place.size() >= innermost->place.size()) innermost = std::move(mount);
  }
  return innermost;
}

void addMountsOf(const Value& image, std::vector<Mount>& mounts) {
  const auto* list = entryOf<Value::Array>(image, "system-entities");
  if (list == nullptr) return;
  for (const Value& entity : *list) {
    const auto* device = entryOf<std::string>(entity, "dev-entry");
    const auto* place = entryOf<std::string>(entity, "mount-point");
    if (device != nullptr && place != nullptr) mounts.push_back({*device, systemPath(*place)});
  }
}

std::vector<Mount> diskImageMounts() {
  std::vector<Mount> mounts;
  const auto table = readDictionary(systemPath("/var/machine/disk-images.plist"));
  if (!table) return mounts;
  const auto* list = entryOf<Value::Array>(table.value(), "images");
  if (list == nullptr) return mounts;
  for (const Value& image : *list) addMountsOf(image, mounts);
  return mounts;
}

std::string withoutLinks(const std::string& path) {
  std::error_code ignored;
  return fs::weakly_canonical(path, ignored).string();
}

}  // namespace

std::optional<MountInformation> LinuxMounts::informationOf(const std::string& path) const {
  std::error_code error;
  const std::string place = fs::canonical(path, error).string();
  if (error) return std::nullopt;
  for (const Mount& image : diskImageMounts()) {
    if (isAtOrBelow(place, withoutLinks(image.place))) return MountInformation{.sourceDevice = image.device};
  }
  const std::optional<Mount> mount = kernelMountOf(place);
  if (!mount) return std::nullopt;
  const std::optional<Mount> disk = kernelMountOf(withoutLinks(machineRoot()));
  return MountInformation{.sourceDevice = mount->device,
                          .isRootFileSystem = mount->place == "/" || (disk && disk->place == mount->place)};
}

}  // namespace karno::platform
