#pragma once
#include "platform/notices.h"
#include "platform/posix/files/file_manager.h"

namespace karno::platform {

// Copies keep permissions, times and, where both disks have them, extended attributes. The Trash is .Trash in
// the user's home. The super-user may write everywhere; here he is told that he may not where nobody's write
// permission is set, as the user of a Mac, who is never the super-user, would be. Why something could not be
// put into the Trash is told in the notices as well.
class LinuxFileManager final : public PosixFileManager {
 public:
  explicit LinuxFileManager(Notices& notices) : notices_(notices) {}

  bool isWritable(const std::string& path) const override;
  std::optional<Error> copyItem(const std::string& from, const std::string& to) override;
  std::optional<Error> trashItem(const std::string& path) override;

 private:
  std::optional<Error> trashAcross(const std::string& path, const std::string& place);
  Error untrashed(const std::string& path, int failure);

  Notices& notices_;
};

}  // namespace karno::platform
