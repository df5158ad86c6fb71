#include "small_disk.h"

#include <fcntl.h>
#include <linux/mount.h>
#include <sched.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <fstream>
#include <utility>

namespace karno::test {
namespace {

namespace fs = std::filesystem;

constexpr unsigned long kDetach = 2;  // MNT_DETACH: whoever is still at work there keeps it

// By the system's own calls: the header that declares the C library's is a Mac's in some test programs.
bool mountAt(const std::string& folder, const char* kind, unsigned long flags, const char* options) {
  return ::syscall(SYS_mount, "none", folder.c_str(), kind, flags, options) == 0;
}

// The user stays who it is; nobody else exists on a disk that this process mounts.
void keepUser(uid_t user, gid_t group) {
  std::ofstream("/proc/self/setgroups") << "deny";
  std::ofstream("/proc/self/uid_map") << user << ' ' << user << " 1";
  std::ofstream("/proc/self/gid_map") << group << ' ' << group << " 1";
}

// Lets this process have mounts of its own. Root needs no user namespace, whose making may be forbidden.
bool standApart() {
  if (::unshare(CLONE_NEWNS) == 0) return true;
  const uid_t user = ::geteuid();
  const gid_t group = ::getegid();
  if (::unshare(CLONE_NEWUSER | CLONE_NEWNS) != 0) return false;
  keepUser(user, group);
  return true;
}

void leaveRoom(const fs::path& folder, std::uintmax_t roomBytes) {
  const fs::space_info space = fs::space(folder);
  const std::string size = "size=" + std::to_string(space.capacity - space.free + roomBytes);
  if (!mountAt(folder, nullptr, MS_REMOUNT, size.c_str())) throw fs::filesystem_error(size, {});
}

}  // namespace

SmallDisk::SmallDisk(fs::path folder, std::uintmax_t roomBytes) : folder_(std::move(folder)) {
  const int covered = ::open(folder_.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (standApart() && mountAt("/", nullptr, MS_REC | MS_PRIVATE, nullptr) &&
      mountAt(folder_, "tmpfs", 0, "mode=755")) {
    fs::copy("/proc/self/fd/" + std::to_string(covered) + "/.", folder_,
             fs::copy_options::recursive | fs::copy_options::copy_symlinks);
    leaveRoom(folder_, roomBytes);
  } else {
    hindrance_ = kNoRight + std::string(std::strerror(errno));
  }
  ::close(covered);
}

SmallDisk::~SmallDisk() {
  if (hindrance_.empty()) ::syscall(SYS_umount2, folder_.c_str(), kDetach);
}

}  // namespace karno::test
