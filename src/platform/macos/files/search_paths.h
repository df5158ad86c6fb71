#pragma once
#include <string>
#include <vector>

namespace karno::platform {

// Numbers of Foundation's headers.
namespace search {

inline constexpr unsigned long kApplications = 1;
inline constexpr unsigned long kLibrary = 5;
inline constexpr unsigned long kCaches = 13;
inline constexpr unsigned long kDownloads = 15;
inline constexpr unsigned long kTrash = 102;
inline constexpr unsigned long kUserDomain = 1;
inline constexpr unsigned long kLocalDomain = 2;
inline constexpr unsigned long kAllDomains = 0xffff;

}  // namespace search

// What NSSearchPathForDirectoriesInDomains answers, tildes expanded; nothing when it raises. Any thread.
std::vector<std::string> searchPathForDirectories(unsigned long directory, unsigned long domains);

}  // namespace karno::platform
