#include "platform/posix/files/file_reading.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <utility>

#include "platform/posix/retry.h"
#include "platform/posix/scoped_descriptor.h"

namespace karno::platform {
namespace {

class PosixReadableFile final : public ReadableFile {
 public:
  PosixReadableFile(ScopedDescriptor descriptor, FileIdentity identity)
      : descriptor_(std::move(descriptor)), identity_(identity) {}

  FileIdentity identity() const override { return identity_; }

  std::uint64_t sizeInBytes() const override {
    struct stat status = {};
    return ::fstat(descriptor_.get(), &status) == 0 ? static_cast<std::uint64_t>(status.st_size) : 0;
  }

  Result<std::string> read(std::uint64_t offset, std::size_t bytesMax) const override {
    std::string bytes(bytesMax, '\0');
    std::size_t used = 0;
    while (used < bytesMax) {
      const ssize_t count = retryOnInterrupt([&] {
        return ::pread(descriptor_.get(), bytes.data() + used, bytesMax - used,
                       static_cast<off_t>(offset + used));
      });
      if (count < 0) return Error::posix(errno);
      if (count == 0) break;
      used += static_cast<std::size_t>(count);
    }
    bytes.resize(used);
    return bytes;
  }

 private:
  const ScopedDescriptor descriptor_;
  const FileIdentity identity_;
};

}  // namespace

Result<std::unique_ptr<ReadableFile>> PosixFileReading::open(const std::string& path) const {
  // O_NONBLOCK keeps a pipe without a writer from blocking the open; regular files ignore it.
  ScopedDescriptor descriptor(
      retryOnInterrupt([&] { return ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY); }));
  if (!descriptor.isOpen()) return Error::posix(errno);

  struct stat status = {};
  if (::fstat(descriptor.get(), &status) != 0) return Error::posix(errno);
  if (S_ISDIR(status.st_mode)) return Error::posix(EISDIR);
  if (!S_ISREG(status.st_mode)) return Error::posix(EINVAL);

  const FileIdentity identity{.device = static_cast<std::uint64_t>(status.st_dev),
                              .number = static_cast<std::uint64_t>(status.st_ino)};
  return std::unique_ptr<ReadableFile>(std::make_unique<PosixReadableFile>(std::move(descriptor), identity));
}

}  // namespace karno::platform
