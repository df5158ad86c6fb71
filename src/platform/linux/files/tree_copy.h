#pragma once
#include <filesystem>
#include <optional>

#include "platform/error.h"

namespace karno::platform {

// Deeper folders are an error (ELOOP).
inline constexpr int kCopyDepthMax = 128;

// Copies a file, a link or a folder with all it holds to a place where nothing is. Permissions, times and
// extended attributes are kept, the last as far as the place and this user's rights allow; a folder gets its
// own only when it is full, so that one without write permission can be copied. Stops at the first error.
std::optional<Error> copyTree(const std::filesystem::path& from, const std::filesystem::path& to);

}  // namespace karno::platform
