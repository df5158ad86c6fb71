#include "platform/posix/files/path_status.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <chrono>

namespace karno::platform {

std::optional<PathStatus> statusOfEntry(int folderDescriptor, const char* name) {
  struct stat status = {};
  if (::fstatat(folderDescriptor, name, &status, AT_SYMLINK_NOFOLLOW) != 0) return std::nullopt;
  const timespec& birth = status.st_birthtimespec;
  return PathStatus{
      .mode = status.st_mode,
      .creationDate = Date(std::chrono::seconds(birth.tv_sec) + std::chrono::nanoseconds(birth.tv_nsec))};
}

}  // namespace karno::platform
