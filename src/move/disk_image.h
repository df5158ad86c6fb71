#pragma once
#include <optional>
#include <string>

namespace karno {

// The device of the mounted disk image that holds the path, such as "/dev/disk4s1"; absent when it lies on
// none. Runs hdiutil and waits for it, except for a path on the root file system. What hdiutil lists is read
// strictly: one malformed entry before the device is found ends the search with nothing.
std::optional<std::string> containingDiskImageDevice(const std::string& path);

}  // namespace karno
