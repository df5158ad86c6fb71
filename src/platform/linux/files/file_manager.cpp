#include "platform/linux/files/file_manager.h"

#include <fmt/format.h>
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

std::string wordsOf(int error) { return std::generic_category().message(error); }

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

// Whoever asks hears that it failed; the notices hear why.
std::optional<Error> LinuxFileManager::trashItem(const std::string& path) {
  const fs::path trash = fs::path(homeFolder()) / ".Trash";
  std::error_code error;
  fs::create_directories(trash, error);
  int failure = error ? error.value() : EEXIST;
  for (int number = 1; failure == EEXIST && number <= kTrashNamesMax; ++number) {
    const fs::path place = placeIn(trash, fs::path(path).filename(), number);
    if (isThere(place)) continue;
    failure = renameReplacingNothing(path, place);
    if (failure == EXDEV) return trashAcross(path, place);
  }
  if (failure == 0) return std::nullopt;
  return untrashed(path, failure);
}

// To another file system. Nothing half removed ever has the item's name: it takes a hidden one first, under
// which the next one removes what this one could not.
std::optional<Error> LinuxFileManager::trashAcross(const std::string& path, const std::string& place) {
  const auto copy = [&path](const std::string& hidden) { return copyTree(path, hidden); };
  if (const auto failure = copyWhole(place, copy)) return untrashed(path, static_cast<int>(failure->code()));
  const fs::path hidden =
      fs::path(path).parent_path() / ("." + fs::path(path).filename().string() + ".trashed");
  std::error_code error;
  fs::remove_all(hidden, error);
  fs::rename(path, hidden, error);
  if (error) return untrashed(path, error.value());
  fs::remove_all(hidden, error);
  if (error) {
    notices_.warn(fmt::format("“{}” is in the Trash, but a part of it stays in “{}”: {}", path,
                              hidden.string(), wordsOf(error.value())));
  }
  return std::nullopt;
}

Error LinuxFileManager::untrashed(const std::string& path, int failure) {
  notices_.warn(fmt::format("“{}” could not be put into the Trash: {}", path, wordsOf(failure)));
  return Error::posix(failure);
}

}  // namespace karno::platform
