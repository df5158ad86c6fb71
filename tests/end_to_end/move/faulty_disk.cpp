// A library to be loaded before all others, which makes the disk fail under a program. It takes the place of
// the C library's functions that the copy, the removal and the Trash are made of. The environment says what
// is wrong:
//   KARNO_TEST_DISK=full       there is room for the first bytes only that are written by copying or
//                              unpacking
//   KARNO_TEST_DISK=stubborn   nothing can be removed, and nothing below a folder Downloads can be renamed
//   KARNO_TEST_DISK=simple     two folders cannot be exchanged in one step
//   KARNO_TEST_KILL_AT=N       the process is killed when it makes its Nth change of the disk
//   KARNO_TEST_COUNT_FILE=F    how many changes it has made is written there when it ends
#include <dlfcn.h>
#include <fcntl.h>
#include <sys/sendfile.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace {

constexpr std::size_t kRoomBytes = 100'000;  // less than a bundle

std::atomic<long> changes{0};
std::atomic<std::size_t> roomBytes{kRoomBytes};

bool diskIs(const char* condition) {
  const char* const disk = std::getenv("KARNO_TEST_DISK");
  return disk != nullptr && std::strcmp(disk, condition) == 0;
}

void countChange() {
  const char* const limit = std::getenv("KARNO_TEST_KILL_AT");
  const long number = ++changes;
  if (limit != nullptr && number == std::strtol(limit, nullptr, 10)) ::kill(::getpid(), SIGKILL);
}

// Writes as many of so many bytes as there is room for, as a disk does before it says that it is full.
template <class Write>
ssize_t writeWhatFits(std::size_t wanted, Write write) {
  if (!diskIs("full")) return write(wanted);
  if (roomBytes == 0) {
    errno = ENOSPC;
    return -1;
  }
  const ssize_t written = write(std::min<std::size_t>(wanted, roomBytes));
  if (written > 0) roomBytes -= static_cast<std::size_t>(written);
  return written;
}

// The function that this library stands in front of.
template <class Function>
Function* real(const char* name) {
  return reinterpret_cast<Function*>(::dlsym(RTLD_NEXT, name));
}

struct Counter {
  ~Counter() {
    const char* const path = std::getenv("KARNO_TEST_COUNT_FILE");
    if (path == nullptr) return;
    if (std::FILE* const file = std::fopen(path, "w")) {
      std::fprintf(file, "%ld\n", changes.load());
      std::fclose(file);
    }
  }
};
const Counter counter;

}  // namespace

extern "C" {

int mkdir(const char* path, mode_t mode) {
  countChange();
  return real<int(const char*, mode_t)>("mkdir")(path, mode);
}

int fchmod(int file, mode_t mode) {
  countChange();
  return real<int(int, mode_t)>("fchmod")(file, mode);
}

int fchmodat(int folder, const char* path, mode_t mode, int flags) {
  countChange();
  return real<int(int, const char*, mode_t, int)>("fchmodat")(folder, path, mode, flags);
}

int symlink(const char* destination, const char* path) {
  countChange();
  return real<int(const char*, const char*)>("symlink")(destination, path);
}

ssize_t sendfile(int to, int from, off_t* offset, size_t count) {
  countChange();
  return writeWhatFits(count, [&](size_t fitting) {
    return real<ssize_t(int, int, off_t*, size_t)>("sendfile")(to, from, offset, fitting);
  });
}

ssize_t pwrite(int file, const void* bytes, size_t count, off_t offset) {
  return writeWhatFits(count, [&](size_t fitting) {
    return real<ssize_t(int, const void*, size_t, off_t)>("pwrite")(file, bytes, fitting, offset);
  });
}

int unlinkat(int folder, const char* path, int flags) {
  countChange();
  if (diskIs("stubborn")) {
    errno = EPERM;
    return -1;
  }
  return real<int(int, const char*, int)>("unlinkat")(folder, path, flags);
}

int rename(const char* from, const char* to) {
  countChange();
  if (diskIs("stubborn") && std::strstr(from, "/Downloads/") != nullptr) {
    errno = EPERM;
    return -1;
  }
  return real<int(const char*, const char*)>("rename")(from, to);
}

int renameat2(int fromFolder, const char* from, int toFolder, const char* to, unsigned flags) {
  countChange();
  if (diskIs("stubborn") && std::strstr(from, "/Downloads/") != nullptr) {
    errno = EPERM;
    return -1;
  }
  if (diskIs("simple") && (flags & RENAME_EXCHANGE) != 0) {
    errno = EINVAL;
    return -1;
  }
  return real<int(int, const char*, int, const char*, unsigned)>("renameat2")(fromFolder, from, toFolder, to,
                                                                              flags);
}
}
