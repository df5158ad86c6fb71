#pragma once
#include "platform/posix/files/file_manager.h"

namespace karno::platform {

// NSFileManager: a copy keeps what a Mac keeps of a bundle, its extended attributes included. What it raises
// is an error.
class FoundationFileManager final : public PosixFileManager {
 public:
  std::optional<Error> copyItem(const std::string& from, const std::string& to) override;
  std::optional<Error> trashItem(const std::string& path) override;
};

}  // namespace karno::platform
