#include "platform/linux/files/file_manager.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <system_error>

#include "platform/linux/files/tree_copy.h"
#include "platform/posix/files/home.h"

namespace karno::platform {
namespace {

namespace fs = std::filesystem;

constexpr int kTrashNamesMax = 10'000;  // of one item

bool isThere(const fs::path& path) {
  struct stat status = {};
  return ::lstat(path.c_str(), &status) == 0;
}

// "Karno.app", "Karno 2.app", ...: the first of these that is free in the folder.
std::optional<fs::path> freePlace(const fs::path& folder, const fs::path& name) {
  fs::path place = folder / name;
  for (int number = 2; isThere(place); ++number) {
    if (number > kTrashNamesMax) return std::nullopt;
    place = folder / (name.stem().string() + " " + std::to_string(number) + name.extension().string());
  }
  return place;
}

bool isBelow(const fs::path& path, const fs::path& folder) {
  std::error_code ignored;
  const std::string above = fs::weakly_canonical(folder, ignored).string() + "/";
  return fs::weakly_canonical(path, ignored).string().starts_with(above);
}

// To another file system.
std::optional<Error> moveAcross(const fs::path& from, const fs::path& to) {
  std::error_code error;
  if (auto failure = copyTree(from, to)) {
    fs::remove_all(to, error);
    return failure;
  }
  fs::remove_all(from, error);
  if (error) return Error::posix(error.value());
  return std::nullopt;
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
  return copyTree(from, to);
}

std::optional<Error> LinuxFileManager::trashItem(const std::string& path) {
  const fs::path trash = fs::path(homeFolder()) / ".Trash";
  std::error_code error;
  fs::create_directories(trash, error);
  if (error) return Error::posix(error.value());

  const std::optional<fs::path> place = freePlace(trash, fs::path(path).filename());
  if (!place) return Error::posix(EEXIST);
  fs::rename(path, *place, error);
  if (error == std::errc::cross_device_link) return moveAcross(path, *place);
  if (error) return Error::posix(error.value());
  return std::nullopt;
}

}  // namespace karno::platform
