#include "installer/tree_removal.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <memory>
#include <string_view>
#include <vector>

#include "platform/posix/scoped_descriptor.h"

namespace karno::installer {
namespace {

using platform::ScopedDescriptor;

constexpr int kFolderFlags = O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC;

struct CloseStream {
  void operator()(DIR* stream) const { ::closedir(stream); }
};

int namesIn(int folder, std::vector<std::string>& names) {
  ScopedDescriptor copy(::openat(folder, ".", kFolderFlags));
  if (!copy.isOpen()) return errno;
  const std::unique_ptr<DIR, CloseStream> stream(::fdopendir(copy.get()));
  if (!stream) return errno;
  copy.release();
  errno = 0;
  while (const dirent* const entry = ::readdir(stream.get())) {
    const std::string_view name = entry->d_name;
    if (name != "." && name != "..") names.emplace_back(name);
  }
  return errno;
}

int removeEntry(int parent, const std::string& name, int depth);

int emptyFolderAt(int folder, int depth) {
  if (depth > kRemovedDepthMax) return ELOOP;
  // The owner may have taken the right to write from themselves; whether that can be mended shows below.
  struct stat status = {};
  if (::fstat(folder, &status) == 0 && (status.st_mode & S_IRWXU) != S_IRWXU)
    static_cast<void>(::fchmod(folder, (status.st_mode & 07777) | S_IRWXU));
  std::vector<std::string> names;
  int firstError = namesIn(folder, names);
  for (const std::string& name : names) {
    const int error = removeEntry(folder, name, depth);
    if (firstError == 0) firstError = error;
  }
  return firstError;
}

int removeEntry(int parent, const std::string& name, int depth) {
  if (::unlinkat(parent, name.c_str(), 0) == 0 || errno == ENOENT) return 0;
  // Of a folder Linux says EISDIR; POSIX has EPERM for it.
  if (errno != EISDIR && errno != EPERM) return errno;
  const int refusal = errno;
  const ScopedDescriptor folder(::openat(parent, name.c_str(), kFolderFlags));
  if (!folder.isOpen()) return errno == ENOTDIR ? refusal : errno;
  if (const int error = emptyFolderAt(folder.get(), depth + 1)) return error;
  return ::unlinkat(parent, name.c_str(), AT_REMOVEDIR) == 0 ? 0 : errno;
}

}  // namespace

int removeTree(const std::string& path) { return removeEntry(AT_FDCWD, path, 0); }

int emptyFolder(int folder) { return emptyFolderAt(folder, 0); }

bool isEmptyFolder(int folder) {
  std::vector<std::string> names;
  return namesIn(folder, names) == 0 && names.empty();
}

}  // namespace karno::installer
