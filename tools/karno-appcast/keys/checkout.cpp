#include "karno-appcast/keys/checkout.h"

#include <filesystem>
#include <system_error>

namespace karno::appcast {

std::optional<std::string> checkoutAround(const std::string& path) {
  namespace fs = std::filesystem;
  std::error_code error;
  // With links followed: what counts is where the file comes to lie.
  fs::path folder = fs::weakly_canonical(fs::absolute(path, error), error).parent_path();
  while (!folder.empty()) {
    // A worktree has a file of that name.
    if (fs::exists(folder / ".git", error)) return folder.string();
    if (folder == folder.root_path()) break;
    folder = folder.parent_path();
  }
  return std::nullopt;
}

}  // namespace karno::appcast
