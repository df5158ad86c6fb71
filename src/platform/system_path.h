#pragma once
#include <string>
#include <string_view>

namespace karno::platform {

// Where a fixed path of a Mac's disk, such as "/usr/bin/open", lies on this machine: the path itself on a
// Mac, a path under the machine root elsewhere. Safe from any thread.
std::string systemPath(std::string_view path);

}  // namespace karno::platform
