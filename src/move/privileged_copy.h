#pragma once
#include <string>

namespace karno {

enum class PrivilegedCopy { Done, Cancelled, Failed };

// Replaces what is at `destination` by a copy of the bundle with an administrator's rights, which the system
// asks the user for. What was there is removed before the copy begins. Waits for the user and for the
// commands. Main thread only; logs nothing.
PrivilegedCopy copyBundleWithPrivileges(const std::string& bundlePath, const std::string& destination);

}  // namespace karno
