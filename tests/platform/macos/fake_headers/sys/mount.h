#pragma once
#include <cstdint>

// What the kernel of macOS tells about a mounted file system, as far as platform/macos reads it.
#define MNT_ROOTFS 0x00004000

struct statfs {
  std::uint32_t f_flags;
  char f_mntonname[1024];
  char f_mntfromname[1024];
};

// Under a name of its own: this system has another function of that name.
extern "C" int statfs(const char* path, struct statfs* information) __asm__("karno_stand_in_statfs");
