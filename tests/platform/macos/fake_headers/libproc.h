#pragma once
#include <cstdint>

#include "sys/proc_info.h"

// The part of libproc that platform/macos calls, declared as macOS does.
extern "C" {
int proc_listpids(std::uint32_t type, std::uint32_t typeinfo, void* buffer, int buffersize);
int proc_pidinfo(int pid, int flavor, std::uint64_t arg, void* buffer, int buffersize);
int proc_pidpath(int pid, void* buffer, std::uint32_t buffersize);
}
