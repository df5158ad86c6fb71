#include "platform/posix/files/file_manager.h"

#include <unistd.h>

#include <filesystem>
#include <system_error>

namespace karno::platform {

bool PosixFileManager::isWritable(const std::string& path) const { return ::access(path.c_str(), W_OK) == 0; }

bool PosixFileManager::isSameItem(const std::string& path, const std::string& other) const {
  std::error_code error;
  return std::filesystem::equivalent(path, other, error) && !error;
}

std::string PosixFileManager::resolvingSymbolicLinks(const std::string& path) const {
  std::error_code error;
  const std::filesystem::path resolved = std::filesystem::canonical(path, error);
  return error ? path : resolved.string();
}

std::string PosixFileManager::standardising(const std::string& path) const {
  std::string normal = std::filesystem::path(path).lexically_normal().string();
  while (normal.size() > 1 && normal.back() == '/') normal.pop_back();
  return normal;
}

}  // namespace karno::platform
