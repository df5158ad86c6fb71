#include "platform/posix/files/files.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <system_error>

#include "platform/posix/files/append_stream.h"
#include "platform/posix/files/folder_walk.h"
#include "platform/posix/files/home.h"
#include "platform/posix/files/whole_file.h"
#include "platform/posix/scoped_descriptor.h"
#include "platform/system_path.h"

namespace karno::platform {
namespace {

constexpr std::size_t kLinkBytesMax = 64U << 10U;

std::optional<Error> errorWith(const std::error_code& code) {
  if (!code) return std::nullopt;
  return Error::posix(code.value());
}

std::string nameOf(UserFolder folder) {
  switch (folder) {
    case UserFolder::Library:
      return "Library";
    case UserFolder::Caches:
      return "Library/Caches";
    case UserFolder::Downloads:
      return "Downloads";
    case UserFolder::Applications:
      return "Applications";
    case UserFolder::Trash:
      return ".Trash";
  }
  return {};
}

}  // namespace

std::vector<std::string> PosixFiles::searchPath(UserFolder folder) const {
  const std::string home = homeFolder();
  return {(home == "/" ? home : home + "/") + nameOf(folder)};
}

std::string PosixFiles::homeDirectory() const { return homeFolder(); }

std::vector<std::string> PosixFiles::localLibraryFolders() const { return {systemPath("/Library")}; }

bool PosixFiles::fileExists(const std::string& path) const {
  struct stat status = {};
  return ::stat(path.c_str(), &status) == 0;
}

std::optional<std::uint64_t> PosixFiles::sizeInBytes(const std::string& path) const {
  struct stat status = {};
  if (::stat(path.c_str(), &status) != 0) return std::nullopt;
  return static_cast<std::uint64_t>(status.st_size);
}

Result<std::string> PosixFiles::read(const std::string& path) const {
  Result<WholeFile> file = readWholeFile(path);
  if (!file) return file.error();
  return std::move(file.value().bytes);
}

Result<std::string> PosixFiles::destinationOfSymbolicLink(const std::string& path) const {
  std::string destination(4096, '\0');
  while (destination.size() <= kLinkBytesMax) {
    const ssize_t length = ::readlink(path.c_str(), destination.data(), destination.size());
    if (length < 0) return Error::posix(errno);
    // A full buffer may hold just the beginning.
    if (static_cast<std::size_t>(length) < destination.size()) {
      destination.resize(static_cast<std::size_t>(length));
      return destination;
    }
    destination.resize(destination.size() * 2);
  }
  return Error::posix(ENAMETOOLONG);
}

std::optional<Error> PosixFiles::createFile(const std::string& path) {
  const ScopedDescriptor file(
      ::open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC | O_NONBLOCK, 0666));
  if (!file.isOpen()) return Error::posix(errno);
  return std::nullopt;
}

std::optional<Error> PosixFiles::createDirectory(const std::string& path) {
  std::error_code code;
  std::filesystem::create_directories(path, code);
  return errorWith(code);
}

std::optional<Error> PosixFiles::remove(const std::string& path) {
  struct stat status = {};
  if (::lstat(path.c_str(), &status) != 0) return Error::posix(errno);

  std::error_code code;
  std::filesystem::remove_all(path, code);
  return errorWith(code);
}

std::optional<Error> PosixFiles::move(const std::string& from, const std::string& to) {
  if (std::rename(from.c_str(), to.c_str()) != 0) return Error::posix(errno);
  return std::nullopt;
}

void PosixFiles::enumerate(const std::string& folder, const Visitor& visit) const {
  walkFolder(folder, visit);
}

std::unique_ptr<AppendStream> PosixFiles::openForAppending(const std::string& path) {
  return FileAppendStream::open(path);
}

}  // namespace karno::platform
