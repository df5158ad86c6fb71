#pragma once
#include <cstdint>

namespace karno::client {

// Returns when that process has ended, at once if there is none. Meant for a thread of its own: it sleeps in
// the kernel, and only where the kernel cannot tell it looks once a second.
void waitForProcessEnd(std::int32_t processIdentifier);

}  // namespace karno::client
