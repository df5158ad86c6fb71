#pragma once
#include <optional>
#include <string>
#include <string_view>

#include "platform/error.h"

namespace karno::platform {

// For command-line tools: puts a file that only this user may read (mode 0600) at the path, in place of one
// that is there. It is there whole and on the disk, or the old one is untouched and nothing is left behind.
std::optional<Error> writePrivateFile(const std::string& path, std::string_view bytes);

}  // namespace karno::platform
