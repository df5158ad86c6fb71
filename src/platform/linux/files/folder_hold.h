#pragma once
#include <optional>
#include <string>

#include "platform/posix/scoped_descriptor.h"

// Who works in a folder holds it, so that nobody clears it away meanwhile: a lock that any number of
// processes share and that the kernel releases at the end of each. Safe from any thread.
namespace karno::platform {

// Holds the folder until the descriptor is closed. Not open where there is no such folder, or no lock to be
// had on its file system.
ScopedDescriptor holdFolder(const std::string& folder);

// Whether any process holds the folder; absent where that cannot be found out.
std::optional<bool> isFolderHeld(const std::string& folder);

}  // namespace karno::platform
