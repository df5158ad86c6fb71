#pragma once
#include <cstdint>
#include <string>
#include <string_view>

#include "installer/archive/safe_path.h"
#include "platform/posix/scoped_descriptor.h"

namespace karno::installer {

// What is unpacked, under a folder that is held open. Every name on the way to a place is entered by itself
// and without following links, so nothing is written outside. All operations give 0 or an errno.
class UnpackedTree {
 public:
  // The folder stays the caller's.
  explicit UnpackedTree(int folder) : folder_(folder) {}

  // Permissions: only the owner may write, and always may; there are no special bits. A folder that is there
  // already just gets its permissions.
  int makeFolder(const SafePath& path, unsigned permissions);
  int makeLink(const SafePath& path, const std::string& target);

  // EEXIST when anything is there already.
  int makeFile(const SafePath& path, unsigned permissions, platform::ScopedDescriptor& file);

 private:
  // The folder that holds `path`, made where it is missing. Good until the next call; -1 with errno.
  int folderOf(const SafePath& path);

  const int folder_;
  SafePath parentPath_;  // of parent_, as files of one folder come one after the other
  platform::ScopedDescriptor parent_;
};

// Writes all bytes there. 0 or an errno.
int writeAllAt(int descriptor, std::string_view bytes, std::uint64_t offset);

// Fills the file up with zeroes and begins to write it to the disk, so that a flush of the whole disk finds
// little left; what fails of the latter is told by the flush. 0 or an errno.
int endFile(int descriptor, std::uint64_t written, std::uint64_t size);

}  // namespace karno::installer
