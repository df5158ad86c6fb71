#pragma once
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "installer/archive/failure.h"
#include "platform/posix/scoped_descriptor.h"

namespace karno::installer {

// The downloaded file, opened once: what is signed and what is unpacked are bytes of the same file, whatever
// the name leads to by then.
class ArchiveFile {
 public:
  // Only a regular file is opened, and no symbolic link is followed in the last place of the path.
  static Outcome<ArchiveFile> open(const std::string& path);

  std::uint64_t sizeInBytes() const { return size_; }
  int descriptor() const { return descriptor_.get(); }

  // Compares the size and checks the signature over all bytes, which are mapped for no longer than that.
  MaybeFailure check(std::optional<std::uint64_t> length, std::string_view signature,
                     std::string_view publicKey) const;

 private:
  platform::ScopedDescriptor descriptor_;
  std::uint64_t size_ = 0;
};

}  // namespace karno::installer
