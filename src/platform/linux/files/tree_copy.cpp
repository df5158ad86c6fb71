#include "platform/linux/files/tree_copy.h"

#include <fcntl.h>
#include <sys/sendfile.h>
#include <sys/stat.h>
#include <sys/xattr.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <string>
#include <system_error>

#include "platform/posix/retry.h"
#include "platform/posix/scoped_descriptor.h"

namespace karno::platform {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t kPieceBytesMax = std::size_t{1} << 24U;

std::error_code lastError() { return {errno, std::generic_category()}; }

std::error_code copyItem(const fs::path& from, const fs::path& to, int depth);

// Names one after the other, each ended by a zero byte; empty where there are none.
std::string namesOfAttributes(const fs::path& path) {
  const ssize_t size = ::llistxattr(path.c_str(), nullptr, 0);
  std::string names(size > 0 ? static_cast<std::size_t>(size) : 0, '\0');
  const ssize_t count = names.empty() ? 0 : ::llistxattr(path.c_str(), names.data(), names.size());
  names.resize(count > 0 ? static_cast<std::size_t>(count) : 0);
  return names;
}

// Some belong to the system or have no place on the other disk: no reason to refuse the copy.
void copyAttributes(const fs::path& from, const fs::path& to) {
  const std::string names = namesOfAttributes(from);
  for (std::size_t at = 0; at < names.size(); at += std::strlen(&names[at]) + 1) {
    const char* const name = &names[at];
    const ssize_t size = ::lgetxattr(from.c_str(), name, nullptr, 0);
    if (size < 0) continue;
    std::string value(static_cast<std::size_t>(size), '\0');
    const ssize_t count = ::lgetxattr(from.c_str(), name, value.data(), value.size());
    if (count >= 0) ::lsetxattr(to.c_str(), name, value.data(), static_cast<std::size_t>(count), 0);
  }
}

std::error_code copyTimes(const struct stat& status, const fs::path& to) {
  const std::array<timespec, 2> times = {status.st_atim, status.st_mtim};
  return ::utimensat(AT_FDCWD, to.c_str(), times.data(), AT_SYMLINK_NOFOLLOW) == 0 ? std::error_code()
                                                                                   : lastError();
}

// As std::filesystem copies, which however says "Input/output error" when the disk is full (libstdc++ 12).
std::error_code copyFile(const fs::path& from, const fs::path& to) {
  const ScopedDescriptor source(
      retryOnInterrupt([&] { return ::open(from.c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW); }));
  if (!source.isOpen()) return lastError();
  struct stat status = {};
  if (::fstat(source.get(), &status) != 0) return lastError();
  const ScopedDescriptor target(
      retryOnInterrupt([&] { return ::open(to.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, S_IWUSR); }));
  if (!target.isOpen() || ::fchmod(target.get(), status.st_mode & 07777U) != 0) return lastError();
  ssize_t count = 1;
  while (count > 0) {
    count = retryOnInterrupt([&] { return ::sendfile(target.get(), source.get(), nullptr, kPieceBytesMax); });
  }
  return count < 0 ? lastError() : std::error_code();
}

std::error_code copyContents(const fs::path& from, const fs::path& to, int depth) {
  std::error_code error;
  fs::directory_iterator entry(from, error);
  while (!error && entry != fs::directory_iterator()) {
    error = copyItem(entry->path(), to / entry->path().filename(), depth + 1);
    if (!error) entry.increment(error);
  }
  return error;
}

std::error_code copyFolder(const fs::path& from, const fs::path& to, fs::perms permissions, int depth) {
  if (depth > kCopyDepthMax) return std::make_error_code(std::errc::too_many_symbolic_link_levels);
  std::error_code error;
  fs::create_directory(to, error);
  if (!error) error = copyContents(from, to, depth);
  if (!error) fs::permissions(to, permissions, error);
  return error;
}

std::error_code copyContent(const fs::path& from, const fs::path& to, int depth) {
  std::error_code error;
  const fs::file_status status = fs::symlink_status(from, error);
  if (error) return error;
  switch (status.type()) {
    case fs::file_type::directory:
      return copyFolder(from, to, status.permissions(), depth);
    case fs::file_type::symlink:
      fs::copy_symlink(from, to, error);
      return error;
    case fs::file_type::regular:
      return copyFile(from, to);
    case fs::file_type::not_found:
      return std::make_error_code(std::errc::no_such_file_or_directory);
    default:
      return std::make_error_code(std::errc::operation_not_supported);
  }
}

// A folder's times come last: what is made in it changes them.
std::error_code copyItem(const fs::path& from, const fs::path& to, int depth) {
  struct stat status = {};
  if (::lstat(from.c_str(), &status) != 0) return lastError();
  if (const std::error_code error = copyContent(from, to, depth)) return error;
  copyAttributes(from, to);
  return copyTimes(status, to);
}

}  // namespace

std::optional<Error> copyTree(const fs::path& from, const fs::path& to) {
  const std::error_code error = copyItem(from, to, 0);
  if (error) return Error::posix(error.value());
  return std::nullopt;
}

}  // namespace karno::platform
