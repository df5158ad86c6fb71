#include "move/move_plan.h"

#include <algorithm>

#include "move/disk_image.h"
#include "platform/platform.h"
#include "util/string_utils.h"

namespace karno {
namespace {

bool isInsideApplication(const std::string& bundlePath) {
  const std::vector<std::string> components = pathComponents(deletingLastPathComponent(bundlePath));
  return std::ranges::any_of(components,
                             [](const std::string& component) { return pathExtension(component) == "app"; });
}

}  // namespace

Move moveOfLauncher() {
  Move move;
  move.bundlePath = platform::host().bundles.mainBundle().bundlePath();
  move.isNested = isInsideApplication(move.bundlePath);
  move.diskImageDevice = containingDiskImageDevice(move.bundlePath);
  return move;
}

void chooseDestination(Move& move) {
  const platform::Platform& host = platform::host();
  const std::string folder =
      host.fileManager.resolvingSymbolicLinks(host.standardFolders.localApplications());
  move.destination = u_stringByAppendingPathComponents(folder, {lastPathComponent(move.bundlePath)});
  move.needsAuthorisation =
      !host.fileManager.isWritable(folder) ||
      (host.files.fileExists(move.destination) && !host.fileManager.isWritable(move.destination));
}

}  // namespace karno
