#pragma once
#include "platform/posix/files/files.h"

namespace karno::platform {

// The user's folders are where Foundation says that they are, which HOME does not change; where it says
// nothing, where they usually are.
class FoundationFiles final : public PosixFiles {
 public:
  std::vector<std::string> searchPath(UserFolder folder) const override;
};

}  // namespace karno::platform
