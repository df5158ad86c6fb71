#include "platform/posix/files/exclusive_rename.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>

namespace karno::platform {

int renameReplacingNothing(const std::string& from, const std::string& to) {
  if (::renamex_np(from.c_str(), to.c_str(), RENAME_EXCL) == 0) return 0;
  if (errno != ENOTSUP && errno != EINVAL) return errno;
  struct stat status = {};
  if (::lstat(to.c_str(), &status) == 0) return EEXIST;
  return ::rename(from.c_str(), to.c_str()) == 0 ? 0 : errno;
}

// fsync() leaves it in the cache of the disk there.
int syncToDisk(int descriptor) {
  if (::fcntl(descriptor, F_FULLFSYNC) == 0) return 0;
  return ::fsync(descriptor) == 0 ? 0 : errno;
}

}  // namespace karno::platform
