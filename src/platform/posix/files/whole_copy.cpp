#include "platform/posix/files/whole_copy.h"

#include <fcntl.h>

#include <cerrno>
#include <filesystem>
#include <system_error>

#include "platform/posix/files/exclusive_rename.h"
#include "platform/posix/retry.h"
#include "platform/posix/scoped_descriptor.h"

namespace karno::platform {
namespace {

namespace fs = std::filesystem;

std::string hiddenNameFor(const fs::path& to) {
  return (to.parent_path() / ("." + to.filename().string() + ".copying")).string();
}

// What cannot be opened for reading was written by somebody who can: it is left to the system.
int syncItem(const fs::path& path) {
  const ScopedDescriptor item(
      retryOnInterrupt([&] { return ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK); }));
  return item.isOpen() ? syncToDisk(item.get()) : 0;
}

int syncTree(const fs::path& top) {
  std::error_code error;
  for (fs::recursive_directory_iterator entry(top, error), end; !error && entry != end;
       entry.increment(error)) {
    if (entry->is_symlink(error)) continue;
    if (const int failure = syncItem(entry->path()); failure != 0) return failure;
  }
  return syncItem(top);
}

std::optional<Error> errorOf(int failure) {
  if (failure == 0) return std::nullopt;
  return Error::posix(failure);
}

std::optional<Error> bringToPlace(const std::string& hidden, const std::string& to) {
  if (const int failure = syncTree(hidden); failure != 0) return errorOf(failure);
  if (const int failure = renameReplacingNothing(hidden, to); failure != 0) return errorOf(failure);
  return errorOf(syncItem(fs::path(to).parent_path()));
}

}  // namespace

std::optional<Error> copyWhole(const std::string& to,
                               const std::function<std::optional<Error>(const std::string& hidden)>& copy) {
  const std::string hidden = hiddenNameFor(to);
  std::error_code ignored;
  fs::remove_all(hidden, ignored);
  std::optional<Error> error = copy(hidden);
  if (!error) error = bringToPlace(hidden, to);
  if (error) fs::remove_all(hidden, ignored);
  return error;
}

}  // namespace karno::platform
