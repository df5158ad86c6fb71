#include "platform/posix/files/path_status.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <chrono>

namespace karno::platform {
namespace {

constexpr unsigned kWantedStatus = STATX_TYPE | STATX_CTIME | STATX_BTIME;

Date dateOf(const struct statx_timestamp& time) {
  return Date(std::chrono::seconds(time.tv_sec) + std::chrono::nanoseconds(time.tv_nsec));
}

}  // namespace

std::optional<PathStatus> statusOfEntry(int folderDescriptor, const char* name) {
  struct statx status = {};
  if (::statx(folderDescriptor, name, AT_SYMLINK_NOFOLLOW, kWantedStatus, &status) != 0) return std::nullopt;
  const bool hasBirthTime = (status.stx_mask & STATX_BTIME) != 0;
  return PathStatus{.mode = status.stx_mode,
                    .creationDate = dateOf(hasBirthTime ? status.stx_btime : status.stx_ctime)};
}

}  // namespace karno::platform
