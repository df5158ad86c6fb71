#include "platform/posix/files/folder_walk.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>

#include <memory>
#include <string_view>

#include "platform/posix/files/path_status.h"
#include "platform/posix/retry.h"
#include "platform/posix/scoped_descriptor.h"

namespace karno::platform {
namespace {

struct CloseFolder {
  void operator()(DIR* folder) const { ::closedir(folder); }
};
using OpenFolder = std::unique_ptr<DIR, CloseFolder>;

OpenFolder openFolder(int parent, const char* name, int extraFlags) {
  ScopedDescriptor descriptor(retryOnInterrupt(
      [&] { return ::openat(parent, name, O_RDONLY | O_DIRECTORY | O_CLOEXEC | extraFlags); }));
  if (!descriptor.isOpen()) return nullptr;

  OpenFolder folder(::fdopendir(descriptor.get()));
  if (folder != nullptr) descriptor.release();
  return folder;
}

FileType typeOf(mode_t mode) {
  if (S_ISREG(mode)) return FileType::Regular;
  if (S_ISDIR(mode)) return FileType::Directory;
  if (S_ISLNK(mode)) return FileType::SymbolicLink;
  return FileType::Other;
}

class Walk {
 public:
  explicit Walk(const Files::Visitor& visit) : visit_(visit) {}

  void into(DIR* folder, const std::string& prefix, int depth) {
    const int descriptor = ::dirfd(folder);
    while (const dirent* item = ::readdir(folder)) {
      const std::string name = item->d_name;
      if (name == "." || name == "..") continue;

      const std::optional<PathStatus> status = statusOfEntry(descriptor, name.c_str());
      if (!status) continue;  // gone since the folder was read

      DirectoryEntry entry = {
          .relativePath = prefix + name, .type = typeOf(status->mode), .creationDate = status->creationDate};
      const bool enter = visit_(entry) && entry.type == FileType::Directory && depth < kFolderDepthMax;
      if (!enter) continue;

      if (const OpenFolder inner = openFolder(descriptor, name.c_str(), O_NOFOLLOW)) {
        into(inner.get(), entry.relativePath + "/", depth + 1);
      }
    }
  }

 private:
  const Files::Visitor& visit_;
};

}  // namespace

void walkFolder(const std::string& folder, const Files::Visitor& visit) {
  if (const OpenFolder top = openFolder(AT_FDCWD, folder.c_str(), 0)) Walk(visit).into(top.get(), "", 1);
}

}  // namespace karno::platform
