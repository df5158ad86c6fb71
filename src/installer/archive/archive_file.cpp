#include "installer/archive/archive_file.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/mman.h>
#include <sys/stat.h>

#include <cerrno>

#include "installer/archive/signature.h"
#include "platform/posix/retry.h"

namespace karno::installer {
namespace {

// The bytes of an open file, for reading.
class Mapping {
 public:
  Mapping(int descriptor, std::size_t size)
      : size_(size), start_(::mmap(nullptr, size, PROT_READ, MAP_PRIVATE, descriptor, 0)) {
    if (isMapped()) ::madvise(start_, size_, MADV_SEQUENTIAL);
  }
  Mapping(const Mapping&) = delete;
  Mapping& operator=(const Mapping&) = delete;
  ~Mapping() {
    if (isMapped()) ::munmap(start_, size_);
  }

  bool isMapped() const { return start_ != MAP_FAILED; }
  std::string_view bytes() const { return {static_cast<const char*>(start_), size_}; }

 private:
  const std::size_t size_;
  void* const start_;
};

}  // namespace

Outcome<ArchiveFile> ArchiveFile::open(const std::string& path) {
  ArchiveFile file;
  // O_NONBLOCK keeps a pipe without a writer from blocking the open; regular files ignore it.
  constexpr int kFlags = O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY;
  file.descriptor_.reset(platform::retryOnInterrupt([&] { return ::open(path.c_str(), kFlags); }));
  if (!file.descriptor_.isOpen()) return systemFailure(errno);

  struct stat status = {};
  if (::fstat(file.descriptor(), &status) != 0) return systemFailure(errno);
  if (!S_ISREG(status.st_mode)) return Failure{FailureCode::Unpacking, "The archive is not a regular file."};
  file.size_ = static_cast<std::uint64_t>(status.st_size);
  return file;
}

MaybeFailure ArchiveFile::check(std::optional<std::uint64_t> length, std::string_view signature,
                                std::string_view publicKey) const {
  if (length && *length != size_) {
    return Failure{FailureCode::LengthDiffers,
                   fmt::format("The archive has {} bytes instead of {}.", size_, *length)};
  }
  // Nothing can be mapped from an empty file.
  if (size_ == 0) return checkSignature({}, signature, publicKey);
  const Mapping mapping(descriptor(), size_);
  if (!mapping.isMapped()) return systemFailure(errno);
  return checkSignature(mapping.bytes(), signature, publicKey);
}

}  // namespace karno::installer
