#include "platform/linux/updater/update_folders.h"

#include <fmt/format.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <ctime>
#include <filesystem>
#include <system_error>

#include "platform/linux/updater/update_errors.h"

namespace karno::platform::updates {
namespace {

constexpr std::time_t kLeftoverAgeSeconds = 24 * 60 * 60;

}  // namespace

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

// An installer may be waiting with a younger one.
void SiblingFolders::removeLeftoversBeside(const std::string& bundle) {
  std::error_code error;
  const std::time_t now = std::time(nullptr);
  for (std::filesystem::directory_iterator entry(std::filesystem::path(bundle).parent_path(), error);
       !error && entry != std::filesystem::directory_iterator(); entry.increment(error)) {
    struct stat status = {};
    const std::string path = entry->path().string();
    const bool isOurs = entry->path().filename().string().starts_with(kUpdateFolderPrefix) &&
                        ::lstat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode) &&
                        status.st_uid == ::geteuid();
    if (isOurs && now - status.st_mtime > kLeftoverAgeSeconds) remove(path);
  }
}

}  // namespace karno::platform::updates
