#pragma once
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/date.h"
#include "platform/error.h"

namespace karno::platform {

enum class FileType { Regular, Directory, SymbolicLink, Other };

struct DirectoryEntry {
  std::string relativePath;
  FileType type = FileType::Other;
  // The birth time; where the file system keeps none, the time of the last change to its status.
  std::optional<Date> creationDate;
};

// A C stream opened for appending. One thread at a time. Failures to write are not reported.
class AppendStream {
 public:
  virtual ~AppendStream() = default;
  virtual void writeLine(std::string_view line) = 0;  // adds the newline; may stay in the stream's buffer
  virtual void flush() = 0;                           // hands the buffer to the file
};

enum class UserFolder { Library, Caches, Downloads, Applications, Trash };

// Files and the user's standard folders. Safe from any thread. Paths are absolute; links in them are
// followed, one at the end as well except by what is said to be about links. Errors are POSIX errors.
class Files {
 public:
  virtual ~Files() = default;

  // The user-domain folders of that kind, most important first.
  virtual std::vector<std::string> searchPath(UserFolder folder) const = 0;
  virtual std::string homeDirectory() const = 0;

  // The Library folders of the whole machine, most important first.
  virtual std::vector<std::string> localLibraryFolders() const = 0;

  virtual bool fileExists(const std::string& path) const = 0;  // false for a link that leads nowhere
  virtual std::optional<std::uint64_t> sizeInBytes(const std::string& path) const = 0;
  virtual Result<std::string> read(const std::string& path) const = 0;

  // What the link says; EINVAL for what is none.
  virtual Result<std::string> destinationOfSymbolicLink(const std::string& path) const = 0;

  // An empty file with default attributes, in place of one that is there. The folder must exist.
  virtual std::optional<Error> createFile(const std::string& path) = 0;

  // With the folders above it. A folder that is there already is a success.
  virtual std::optional<Error> createDirectory(const std::string& path) = 0;

  // A folder goes with all it holds, a link alone. After a failure a part of the folder may be gone.
  virtual std::optional<Error> remove(const std::string& path) = 0;

  // A rename of what is there, be it a link. It replaces a file that is in the way and an empty folder that
  // makes place for another, and does not cross file systems (EXDEV).
  virtual std::optional<Error> move(const std::string& from, const std::string& to) = 0;

  // Walks the folder, depth first, in the file system's order. The visitor answers whether to go into the
  // entry just seen when it is a folder. A missing or unreadable folder has no entries.
  using Visitor = std::function<bool(const DirectoryEntry&)>;
  virtual void enumerate(const std::string& folder, const Visitor& visit) const = 0;

  // Creates the file when it is missing; null when it cannot be opened.
  virtual std::unique_ptr<AppendStream> openForAppending(const std::string& path) = 0;
};

}  // namespace karno::platform
