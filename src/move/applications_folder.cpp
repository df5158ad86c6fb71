#include "move/applications_folder.h"

#include <algorithm>
#include <string_view>

#include "move/disk_image.h"
#include "platform/platform.h"
#include "util/string_utils.h"

namespace karno {
namespace {

constexpr std::string_view kSuppressKey = "moveToApplicationsFolderAlertSuppress";

bool isBelowAny(const std::vector<std::string>& folders, const std::string& path) {
  return std::ranges::any_of(folders,
                             [&path](const std::string& folder) { return path.starts_with(folder); });
}

}  // namespace

bool applicationNeedsMoving(bool onlyFromDiskImage) {
  if (isMoveSuppressed()) return false;
  const std::string bundlePath = platform::host().bundles.mainBundle().bundlePath();
  if (onlyFromDiskImage) return containingDiskImageDevice(bundlePath).has_value();
  return !isInApplicationsFolder(bundlePath);
}

bool isMoveSuppressed() {
  return platform::host().userDefaults.standardUserDefaults().boolForKey(kSuppressKey);
}

bool isTranslocated(const std::string& path) { return u_containsString(path, "/AppTranslocation/"); }

bool isInDownloadsFolder(const std::string& path) {
  return isBelowAny(platform::host().standardFolders.inAllDomains(platform::StandardFolder::Downloads), path);
}

bool isInApplicationsFolder(const std::string& path) {
  const auto folders = platform::host().standardFolders.inAllDomains(platform::StandardFolder::Applications);
  if (isBelowAny(folders, path)) return true;
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
