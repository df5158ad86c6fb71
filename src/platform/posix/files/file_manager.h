#pragma once
#include "platform/file_manager.h"

namespace karno::platform {

// What is the same on both systems: questions about paths.
class PosixFileManager : public FileManager {
 public:
  bool isWritable(const std::string& path) const override;
  bool isSameItem(const std::string& path, const std::string& other) const final;
  std::string resolvingSymbolicLinks(const std::string& path) const final;
  std::string standardising(const std::string& path) const final;
};

}  // namespace karno::platform
