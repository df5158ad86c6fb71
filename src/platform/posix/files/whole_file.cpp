#include "platform/posix/files/whole_file.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>

#include "platform/posix/retry.h"
#include "platform/posix/scoped_descriptor.h"

namespace karno::platform {
namespace {

constexpr std::size_t kChunkBytes = 64U << 10U;

// Files under /proc report no size, so the end is where read() says it is.
int readToEnd(int descriptor, std::string& bytes) {
  while (true) {
    const std::size_t used = bytes.size();
    if (used > kFileReadBytesMax) return EFBIG;

    bytes.resize(used + kChunkBytes);
    const ssize_t count =
        retryOnInterrupt([&] { return ::read(descriptor, bytes.data() + used, kChunkBytes); });
    if (count < 0) return errno;
    bytes.resize(used + static_cast<std::size_t>(count));
    if (count == 0) return 0;
  }
}

int refusalOf(const struct stat& status) {
  if (S_ISDIR(status.st_mode)) return EISDIR;
  if (!S_ISREG(status.st_mode)) return EINVAL;
  if (static_cast<std::size_t>(status.st_size) > kFileReadBytesMax) return EFBIG;
  return 0;
}

int fillAndRename(int descriptor, const std::string& temporary, const std::string& path,
                  std::string_view bytes) {
  if (const int error = writeAll(descriptor, bytes)) return error;
  if (::fsync(descriptor) != 0) return errno;
  return ::rename(temporary.c_str(), path.c_str()) == 0 ? 0 : errno;
}

}  // namespace

Result<WholeFile> readWholeFile(const std::string& path) {
  // O_NONBLOCK keeps a pipe without a writer from blocking the open; regular files ignore it.
  const ScopedDescriptor file(
      retryOnInterrupt([&] { return ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY); }));
  if (!file.isOpen()) return Error::posix(errno);

  WholeFile result;
  if (::fstat(file.get(), &result.status) != 0) return Error::posix(errno);
  if (const int refusal = refusalOf(result.status)) return Error::posix(refusal);

  result.bytes.reserve(static_cast<std::size_t>(result.status.st_size) + kChunkBytes);
  if (const int error = readToEnd(file.get(), result.bytes)) return Error::posix(error);
  return result;
}

int writeAll(int descriptor, std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t count = retryOnInterrupt([&] { return ::write(descriptor, bytes.data(), bytes.size()); });
    if (count < 0) return errno;
    bytes.remove_prefix(static_cast<std::size_t>(count));
  }
  return 0;
}

int replaceFile(const std::string& path, std::string_view bytes) {
  std::string temporary = path + ".XXXXXX";
  const ScopedDescriptor file(::mkostemp(temporary.data(), O_CLOEXEC));  // mode 0600
  if (!file.isOpen()) return errno;

  const int error = fillAndRename(file.get(), temporary, path, bytes);
  if (error != 0) ::unlink(temporary.c_str());
  return error;
}

}  // namespace karno::platform
