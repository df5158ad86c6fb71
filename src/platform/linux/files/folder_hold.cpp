#include "platform/linux/files/folder_hold.h"

#include <fcntl.h>
#include <sys/file.h>

#include <cerrno>

#include "platform/posix/retry.h"

namespace karno::platform {
namespace {

ScopedDescriptor openFolder(const std::string& folder) {
  constexpr int kFlags = O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC;
  return ScopedDescriptor(retryOnInterrupt([&] { return ::open(folder.c_str(), kFlags); }));
}

}  // namespace

// Nobody keeps the other kind of lock for longer than it takes to find the folder free.
ScopedDescriptor holdFolder(const std::string& folder) {
  ScopedDescriptor opened = openFolder(folder);
  if (opened.isOpen() && retryOnInterrupt([&] { return ::flock(opened.get(), LOCK_SH); }) != 0)
    opened.reset();
  return opened;
}

std::optional<bool> isFolderHeld(const std::string& folder) {
  const ScopedDescriptor opened = openFolder(folder);
  if (!opened.isOpen()) return std::nullopt;
  if (::flock(opened.get(), LOCK_EX | LOCK_NB) == 0) return false;
  return errno == EWOULDBLOCK ? std::optional(true) : std::nullopt;
}

}  // namespace karno::platform
