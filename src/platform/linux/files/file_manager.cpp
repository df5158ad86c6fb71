#include "platform/linux/files/file_manager.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <system_error>

#include "platform/linux/files/tree_copy.h"
#include "platform/posix/files/exclusive_rename.h"
#include "platform/posix/files/home.h"
#include "platform/posix/files/whole_copy.h"

namespace karno::platform {
namespace {

namespace fs = std::filesystem;

constexpr int kTrashNamesMax = 10'000;  // of one item

bool isThere(const fs::path& path) {
  struct stat status = {};
  return ::lstat(path.c_str(), &status) == 0;
}

// "Karno.app", "Karno 2.app", ...
fs::path placeIn(const fs::path& folder, const fs::path& name, int number) {
  if (number == 1) return folder / name;
  return folder / (name.stem().string() + " " + std::to_string(number) + name.extension().string());
}

bool isBelow(const fs::path& path, const fs::path& folder) {
  std::error_code ignored;
  const std::string above = fs::weakly_canonical(folder, ignored).string() + "/";
  return fs::weakly_canonical(path, ignored).string().starts_with(above);
}

// To another file system.
int moveAcross(const fs::path& from, const fs::path& to) {
  if (const auto failure =
          copyWhole(to, [&from](const std::string& hidden) { return copyTree(from, hidden); }))
    return static_cast<int>(failure->code());
  std::error_code error;
  fs::remove_all(from, error);
  return error.value();
}

int moveTo(const fs::path& place, const fs::path& from) {
  const int failure = renameReplacingNothing(from, place);
  return failure == EXDEV ? moveAcross(from, place) : failure;
}

}  // namespace

bool LinuxFileManager::isWritable(const std::string& path) const {
  if (!PosixFileManager::isWritable(path)) return false;
  struct stat status = {};
  if (::stat(path.c_str(), &status) != 0) return false;
  return ::geteuid() != 0 || (status.st_mode & (S_IWUSR | S_IWGRP | S_IWOTH)) != 0;
}

std::optional<Error> LinuxFileManager::copyItem(const std::string& from, const std::string& to) {
  if (isThere(to)) return Error::posix(EEXIST);
  if (isBelow(to, from)) return Error::posix(EINVAL);
  return copyWhole(to, [&from](const std::string& hidden) { return copyTree(from, hidden); });
}

std::optional<Error> LinuxFileManager::trashItem(const std::string& path) {
  const fs::path trash = fs::path(homeFolder()) / ".Trash";
  std::error_code error;
  fs::create_directories(trash, error);
  if (error) return Error::posix(error.value());

  int failure = EEXIST;
  for (int number = 1; failure == EEXIST && number <= kTrashNamesMax; ++number) {
    const fs::path place = placeIn(trash, fs::path(path).filename(), number);
    if (!isThere(place)) failure = moveTo(place, path);
  }
  if (failure != 0) return Error::posix(failure);
  return std::nullopt;
}

}  // namespace karno::platform
