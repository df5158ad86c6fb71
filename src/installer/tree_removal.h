#pragma once
#include <string>

namespace karno::installer {

// Deeper folders are left where they are, with ELOOP. Each level holds one descriptor.
inline constexpr int kRemovedDepthMax = 256;

// Removes a folder, or whatever else the name leads to, with all it holds; links are removed, never followed.
// What cannot be removed does not keep the rest from it. 0 or the first errno; ENOENT counts as removed.
int removeTree(const std::string& path);

// Removes what an open folder holds and leaves the folder.
int emptyFolder(int folder);

// Also false when that cannot be found out.
bool isEmptyFolder(int folder);

}  // namespace karno::installer
