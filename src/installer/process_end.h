#pragma once
#include <sys/types.h>

#include <chrono>

namespace karno::installer {

// Waits until a process, which need not be a child, has ended. 0 also when there is none of that identifier;
// ETIMEDOUT when it still runs at the end of the limit; else the errno that kept us from watching it.
int waitForEnd(pid_t process, std::chrono::seconds limit);

}  // namespace karno::installer
