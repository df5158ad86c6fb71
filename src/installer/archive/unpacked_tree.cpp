#include "installer/archive/unpacked_tree.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <utility>

#include "platform/posix/retry.h"

namespace karno::installer {
namespace {

using platform::retryOnInterrupt;
using platform::ScopedDescriptor;

constexpr mode_t kImpliedFolderMode = 0755;
constexpr mode_t kModeKept = 0755;
constexpr int kFolderFlags = O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC;

int openFolder(int parent, const std::string& name) {
  return retryOnInterrupt([&] { return ::openat(parent, name.c_str(), kFolderFlags); });
}

int openOrMakeFolder(int parent, const std::string& name) {
  const int folder = openFolder(parent, name);
  if (folder >= 0 || errno != ENOENT) return folder;
  if (::mkdirat(parent, name.c_str(), kImpliedFolderMode) != 0) return -1;
  return openFolder(parent, name);
}

}  // namespace

int UnpackedTree::folderOf(const SafePath& path) {
  if (path.size() < 2) return folder_;
  if (parent_.isOpen() && parentPath_.size() + 1 == path.size() &&
      std::equal(parentPath_.begin(), parentPath_.end(), path.begin()))
    return parent_.get();

  ScopedDescriptor folder;
  for (std::size_t depth = 0; depth + 1 < path.size(); ++depth) {
    folder.reset(openOrMakeFolder(depth == 0 ? folder_ : folder.get(), path[depth]));
    if (!folder.isOpen()) return -1;
  }
  parentPath_.assign(path.begin(), path.end() - 1);
  parent_ = std::move(folder);
  return parent_.get();
}

int UnpackedTree::makeFolder(const SafePath& path, unsigned permissions) {
  const int parent = folderOf(path);
  if (parent < 0) return errno;
  const ScopedDescriptor folder(openOrMakeFolder(parent, path.back()));
  if (!folder.isOpen()) return errno;
  return ::fchmod(folder.get(), (permissions & kModeKept) | S_IRWXU) == 0 ? 0 : errno;
}

int UnpackedTree::makeLink(const SafePath& path, const std::string& target) {
  const int parent = folderOf(path);
  if (parent < 0) return errno;
  return ::symlinkat(target.c_str(), parent, path.back().c_str()) == 0 ? 0 : errno;
}

int UnpackedTree::makeFile(const SafePath& path, unsigned permissions, ScopedDescriptor& file) {
  const int parent = folderOf(path);
  if (parent < 0) return errno;
  constexpr int kFlags = O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC;
  file.reset(retryOnInterrupt([&] { return ::openat(parent, path.back().c_str(), kFlags, S_IRUSR); }));
  if (!file.isOpen()) return errno;
  return ::fchmod(file.get(), (permissions & kModeKept) | S_IRUSR | S_IWUSR) == 0 ? 0 : errno;
}

int writeAllAt(int descriptor, std::string_view bytes, std::uint64_t offset) {
  while (!bytes.empty()) {
    const ssize_t count = retryOnInterrupt(
        [&] { return ::pwrite(descriptor, bytes.data(), bytes.size(), static_cast<off_t>(offset)); });
    if (count < 0) return errno;
    bytes.remove_prefix(static_cast<std::size_t>(count));
    offset += static_cast<std::uint64_t>(count);
  }
  return 0;
}

int endFile(int descriptor, std::uint64_t written, std::uint64_t size) {
  if (size > written && ::ftruncate(descriptor, static_cast<off_t>(size)) != 0) return errno;
  ::sync_file_range(descriptor, 0, 0, SYNC_FILE_RANGE_WRITE);
  return 0;
}

}  // namespace karno::installer
