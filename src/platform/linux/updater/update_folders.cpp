#include "platform/linux/updater/update_folders.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <map>
#include <mutex>
#include <system_error>

#include "platform/linux/files/folder_hold.h"
#include "platform/linux/updater/update_errors.h"
#include "platform/never_destroyed.h"
#include "platform/posix/scoped_descriptor.h"

namespace karno::platform::updates {
namespace {

namespace fs = std::filesystem;

constexpr std::time_t kLeftoverAgeSeconds = 24 * 60 * 60;
constexpr int kTriesMax = 3;  // each lost to another launcher that clears away

void removeFolder(const std::string& folder) {
  std::error_code ignored;
  fs::remove_all(folder, ignored);
}

// What this process works in. Any thread.
class HeldFolders {
 public:
  static HeldFolders& ofThisProcess() {
    static NeverDestroyed<HeldFolders> folders;
    return *folders;
  }

  HeldFolders() {
    std::atexit([] { ofThisProcess().removeAll(); });
  }

  void add(const std::string& folder, ScopedDescriptor hold) {
    const std::lock_guard guard(mutex_);
    holds_.insert_or_assign(folder, std::move(hold));
  }

  ScopedDescriptor take(const std::string& folder) {
    const std::lock_guard guard(mutex_);
    const auto found = holds_.find(folder);
    if (found == holds_.end()) return {};
    ScopedDescriptor hold = std::move(found->second);
    holds_.erase(found);
    return hold;
  }

 private:
  void removeAll() {
    const std::lock_guard guard(mutex_);
    for (const auto& [folder, hold] : holds_) removeFolder(folder);
  }

  std::mutex mutex_;
  std::map<std::string, ScopedDescriptor> holds_;
};

Error notWritable(const std::string& folder, int error) {
  return updateError(
      UpdateErrorCode::NoWritePermission,
      fmt::format("The folder “{}” cannot be written: {}.", folder, std::generic_category().message(error)));
}

// A download that was cut off, or nothing yet.
bool holdsFilesAlone(const fs::path& folder) {
  std::error_code error;
  const fs::directory_iterator entries(folder, error);
  return !error && std::ranges::none_of(entries, [](const fs::directory_entry& entry) {
    std::error_code ignored;
    return entry.is_directory(ignored);
  });
}

bool isLeftover(const fs::path& path) {
  struct stat status = {};
  const bool isOurs = path.filename().string().starts_with(kUpdateFolderPrefix) &&
                      ::lstat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode) &&
                      status.st_uid == ::geteuid();
  if (!isOurs) return false;
  const std::optional<bool> isHeld = isFolderHeld(path);
  if (isHeld == true) return false;
  // An installer may be waiting with a younger bundle.
  return std::time(nullptr) - status.st_mtime > kLeftoverAgeSeconds ||
         (isHeld == false && holdsFilesAlone(path));
}

// Moving a folder to another one rewrites its "..", so it must be writable itself; and in a folder with the
// sticky bit nobody but its owner and the parent's may move it. 0 or the errno that a move would give.
int hindranceToMoving(const std::string& bundle, const std::string& parent) {
  struct stat status = {};
  struct stat around = {};
  if (::lstat(bundle.c_str(), &status) != 0 || ::stat(parent.c_str(), &around) != 0) return errno;
  const uid_t user = ::geteuid();
  const bool isOwner = user == 0 || user == status.st_uid || user == around.st_uid;
  if ((around.st_mode & S_ISVTX) != 0 && !isOwner) return EPERM;
  return ::faccessat(AT_FDCWD, bundle.c_str(), W_OK, AT_EACCESS) == 0 ? 0 : errno;
}

// A folder that is there only as long as it is looked for.
class PassingFolder {
 public:
  explicit PassingFolder(const std::string& parent)
      : path_(fmt::format("{}/{}XXXXXX", parent, kUpdateFolderPrefix)),
        error_(::mkdtemp(path_.data()) != nullptr ? 0 : errno) {}
  PassingFolder(const PassingFolder&) = delete;
  PassingFolder& operator=(const PassingFolder&) = delete;
  ~PassingFolder() {
    if (error_ == 0) ::rmdir(path_.c_str());
  }

  const std::string& path() const { return path_; }
  int error() const { return error_; }

 private:
  std::string path_;
  const int error_;
};

std::string parentOf(const std::string& bundle) { return fs::path(bundle).parent_path().string(); }

}  // namespace

std::optional<Error> SiblingFolders::refusalOfPlace(const std::string& bundle) {
  const std::string parent = parentOf(bundle);
  const PassingFolder one(parent);
  const PassingFolder other(parent);
  if (one.error() != 0 || other.error() != 0)
    return notWritable(parent, std::max(one.error(), other.error()));
  if (const int error = hindranceToMoving(bundle, parent)) return notWritable(bundle, error);
  if (exchange_(one.path(), other.path()) == 0) return std::nullopt;
  return updateError(
      UpdateErrorCode::Installation,
      fmt::format("Updates cannot be installed in the folder “{}”: its disk cannot exchange two "
                  "folders in one step.",
                  parent));
}

Result<std::string> SiblingFolders::makeFolderBeside(const std::string& bundle) {
  const std::string parent = parentOf(bundle);
  for (int tries = 0; tries < kTriesMax; ++tries) {
    std::string folder = fmt::format("{}/{}XXXXXX", parent, kUpdateFolderPrefix);
    if (::mkdtemp(folder.data()) == nullptr) return notWritable(parent, errno);
    ScopedDescriptor hold = holdFolder(folder);
    // Until it was held, another launcher may have taken it for a leftover.
    if (::access(folder.c_str(), F_OK) != 0) continue;
    HeldFolders::ofThisProcess().add(folder, std::move(hold));
    return folder;
  }
  return notWritable(parent, ENOENT);
}

// The hold stays until the end of the process, which the installer waits for.
void SiblingFolders::handOver(const std::string& folder) {
  HeldFolders::ofThisProcess().take(folder).release();
}

void SiblingFolders::remove(const std::string& folder) {
  const ScopedDescriptor hold = HeldFolders::ofThisProcess().take(folder);
  removeFolder(folder);
}

void SiblingFolders::removeLeftoversBeside(const std::string& bundle) {
  std::error_code error;
  for (fs::directory_iterator entry(parentOf(bundle), error); !error && entry != fs::directory_iterator();
       entry.increment(error)) {
    if (isLeftover(entry->path())) removeFolder(entry->path());
  }
}

}  // namespace karno::platform::updates
