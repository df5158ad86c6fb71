#include "move/applications_folder.h"

#include <algorithm>
#include <string_view>

#include "move/disk_image.h"
#include "platform/platform.h"
#include "util/string_utils.h"

namespace karno {
namespace {

constexpr std::string_view kSuppressKey = "moveToApplicationsFolderAlertSuppress";

}  // namespace

bool applicationNeedsMoving(bool onlyFromDiskImage) {
  const platform::Platform& host = platform::host();
  if (host.userDefaults.standardUserDefaults().boolForKey(kSuppressKey)) return false;
  const std::string bundlePath = host.bundles.mainBundle().bundlePath();
  if (onlyFromDiskImage) return containingDiskImageDevice(bundlePath).has_value();
  return !isInApplicationsFolder(bundlePath);
}

bool isInApplicationsFolder(const std::string& path) {
  const auto folders = platform::host().standardFolders.inAllDomains(platform::StandardFolder::Applications);
  const bool isBelowOne =
      std::ranges::any_of(folders, [&path](const std::string& folder) { return path.starts_with(folder); });
  if (isBelowOne) return true;
  // A link or a disk that folds case can make a folder of any name one of them: moved there, the launcher
  // would be moved onto itself.
  const std::string folderOfPath = deletingLastPathComponent(path);
  const bool isInOne = std::ranges::any_of(folders, [&folderOfPath](const std::string& folder) {
    return platform::host().fileManager.isSameItem(folder, folderOfPath);
  });
  if (isInOne) return true;
  const std::vector<std::string> components = pathComponents(path);
  return std::ranges::find(components, "Applications") != components.end();
}

}  // namespace karno
