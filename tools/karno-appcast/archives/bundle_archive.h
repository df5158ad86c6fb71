#pragma once
#include <cstddef>
#include <string>
#include <string_view>

namespace karno::appcast {

inline constexpr std::size_t kInfoBytesMax = std::size_t{1} << 20U;

// The name without the ending of an archive that releases come in; empty when it has none of them.
std::string_view nameWithoutArchiveEnding(std::string_view fileName);

// The application's bundle in an archive.
struct ArchivedBundle {
  std::string name;       // "Karno" of Karno.app
  std::string infoPlist;  // the bytes of its Info.plist
};

// Unpacks the archive as an installer does, into a folder of temporary files that goes again, and looks at
// what came out. A Failure, without the archive's name, when an installer would refuse it, or when it is a
// bundle for a Mac that nobody has signed.
ArchivedBundle bundleInArchive(const std::string& path);

}  // namespace karno::appcast
