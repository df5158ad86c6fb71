#pragma once
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

#include "platform/error.h"

namespace karno::platform {

// Tells files apart, whatever their names. A number is used anew only after its file is gone and closed.
struct FileIdentity {
  std::uint64_t device = 0;
  std::uint64_t number = 0;
  bool operator==(const FileIdentity&) const = default;
};

// A regular file that is open for reading. It stays the same file when it is renamed or removed. Immutable
// and safe from any thread.
class ReadableFile {
 public:
  virtual ~ReadableFile() = default;

  virtual FileIdentity identity() const = 0;

  // As it is at this moment; 0 when that cannot be learnt.
  virtual std::uint64_t sizeInBytes() const = 0;

  // Up to `bytesMax` bytes from `offset` on, fewer only when the file ends there. Nothing at or behind its
  // end.
  virtual Result<std::string> read(std::uint64_t offset, std::size_t bytesMax) const = 0;
};

// Reads files piece by piece, where Files reads them whole. Safe from any thread.
class FileReading {
 public:
  virtual ~FileReading() = default;

  // EISDIR for a folder, EINVAL for a device, pipe or socket.
  virtual Result<std::unique_ptr<ReadableFile>> open(const std::string& path) const = 0;
};

}  // namespace karno::platform
