#include "platform/posix/files/program_bundle.h"

#include <filesystem>

namespace karno::platform {

std::optional<std::string> bundleOfProgram(const std::string& programPath) {
  const std::filesystem::path folder = std::filesystem::path(programPath).parent_path();
  if (folder.filename() != "MacOS" || folder.parent_path().filename() != "Contents") return std::nullopt;
  return folder.parent_path().parent_path().string();
}

}  // namespace karno::platform
