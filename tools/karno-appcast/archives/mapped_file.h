#pragma once
#include <sys/stat.h>

#include <cstdint>
#include <string>

#include "karno-appcast/keys/ed25519.h"

namespace karno::appcast {

inline constexpr std::uint64_t kArchiveBytesMax = std::uint64_t{4} << 30U;

// The bytes of a regular file as they are on disk, without a copy in memory: a signature is made over all of
// them at once. Whoever changes the file meanwhile spoils the signature.
class MappedFile {
 public:
  // A Failure when it cannot be read or is larger than kArchiveBytesMax.
  explicit MappedFile(const std::string& path);
  ~MappedFile();
  MappedFile(const MappedFile&) = delete;
  MappedFile& operator=(const MappedFile&) = delete;

  Bytes bytes() const { return bytes_; }
  std::int64_t modifiedAt() const { return modifiedAt_; }  // in seconds since 1970, UTC

 private:
  Bytes bytes_;
  std::int64_t modifiedAt_ = 0;
};

}  // namespace karno::appcast
