#include "platform/posix/files/exclusive_rename.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>

namespace karno::platform {

int renameReplacingNothing(const std::string& from, const std::string& to) {
  if (::renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE) == 0) return 0;
  if (errno != ENOTSUP && errno != EINVAL && errno != ENOSYS) return errno;
  struct stat status = {};
  if (::lstat(to.c_str(), &status) == 0) return EEXIST;
  return ::rename(from.c_str(), to.c_str()) == 0 ? 0 : errno;
}

int syncToDisk(int descriptor) { return ::fsync(descriptor) == 0 ? 0 : errno; }

}  // namespace karno::platform
