#include "platform/linux/updater/update_folders.h"

#include <fmt/format.h>
#include <stdlib.h>

#include <cerrno>
#include <filesystem>
#include <system_error>

#include "platform/linux/updater/update_errors.h"

namespace karno::platform::updates {

Result<std::string> SiblingFolders::makeFolderBeside(const std::string& bundle) {
  const std::string parent = std::filesystem::path(bundle).parent_path().string();
  std::string folder = fmt::format("{}/{}XXXXXX", parent, kUpdateFolderPrefix);
  if (::mkdtemp(folder.data()) != nullptr) return folder;
  return updateError(
      UpdateErrorCode::NoWritePermission,
      fmt::format("The folder “{}” cannot be written: {}.", parent, std::generic_category().message(errno)));
}

void SiblingFolders::remove(const std::string& folder) {
  std::error_code ignored;
  std::filesystem::remove_all(folder, ignored);
}

}  // namespace karno::platform::updates
