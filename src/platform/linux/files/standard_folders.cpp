#include "platform/linux/files/standard_folders.h"

#include "platform/posix/files/home.h"
#include "platform/system_path.h"

namespace karno::platform {

// Only the user has a Downloads folder.
std::vector<std::string> LinuxStandardFolders::inAllDomains(StandardFolder folder) const {
  if (folder == StandardFolder::Downloads) return {homeFolder() + "/Downloads"};
  return {homeFolder() + "/Applications", localApplications(), systemPath("/Network/Applications"),
          systemPath("/System/Applications")};
}

std::string LinuxStandardFolders::localApplications() const { return systemPath("/Applications"); }

}  // namespace karno::platform
