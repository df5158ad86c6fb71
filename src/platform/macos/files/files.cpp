#include "platform/macos/files/files.h"

#include "platform/macos/files/search_paths.h"

namespace karno::platform {
namespace {

unsigned long numberOf(UserFolder folder) {
  switch (folder) {
    case UserFolder::Library:
      return search::kLibrary;
    case UserFolder::Caches:
      return search::kCaches;
    case UserFolder::Downloads:
      return search::kDownloads;
    case UserFolder::Applications:
      return search::kApplications;
    case UserFolder::Trash:
      return search::kTrash;
  }
  return 0;
}

}  // namespace

std::vector<std::string> FoundationFiles::searchPath(UserFolder folder) const {
  std::vector<std::string> folders = searchPathForDirectories(numberOf(folder), search::kUserDomain);
  return folders.empty() ? PosixFiles::searchPath(folder) : folders;
}

}  // namespace karno::platform
