#pragma once
#include <string>

namespace karno::platform {

// Renames an item where nothing has that name yet, be it a link that leads nowhere: 0 or an errno value,
// EEXIST where something has. On a file system that cannot do both in one step the look comes first.
int renameReplacingNothing(const std::string& from, const std::string& to);

// Brings what was written to the file or folder past the cache of the disk itself: 0 or an errno value.
int syncToDisk(int descriptor);

}  // namespace karno::platform
