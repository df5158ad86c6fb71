#pragma once
#include <sys/stat.h>

#include <cstddef>
#include <string>
#include <string_view>

#include "platform/error.h"

namespace karno::platform {

inline constexpr std::size_t kFileReadBytesMax = 64U << 20U;

struct WholeFile {
  std::string bytes;
  struct stat status = {};  // as it was before the first byte was read
};

// Reads a regular file. EISDIR for a folder, EINVAL for a device, pipe or socket, EFBIG above the limit.
Result<WholeFile> readWholeFile(const std::string& path);

// Writes all bytes; 0 or the errno that stopped it.
int writeAll(int descriptor, std::string_view bytes);

// Puts the file in place in one step: readers see the old content or the new one, also after a power failure.
// The file gets mode 0600. 0 or the errno that stopped it; then the old file is untouched.
int replaceFile(const std::string& path, std::string_view bytes);

}  // namespace karno::platform
