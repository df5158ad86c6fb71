#include "platform/macos/files/standard_folders.h"

#include "platform/macos/files/search_paths.h"

namespace karno::platform {

std::vector<std::string> FoundationStandardFolders::inAllDomains(StandardFolder folder) const {
  return searchPathForDirectories(
      folder == StandardFolder::Downloads ? search::kDownloads : search::kApplications, search::kAllDomains);
}

std::string FoundationStandardFolders::localApplications() const {
  const std::vector<std::string> folders =
      searchPathForDirectories(search::kApplications, search::kLocalDomain);
  return folders.empty() ? "/Applications" : folders.front();
}

}  // namespace karno::platform
