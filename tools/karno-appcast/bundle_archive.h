#pragma once
#include <cstddef>
#include <string>
#include <string_view>

#include "karno-appcast/ed25519.h"

namespace karno::appcast {

inline constexpr std::size_t kInfoBytesMax = std::size_t{1} << 20U;
inline constexpr int kArchiveEntriesMax = 100'000;  // launchers unpack no more

// The name without the ending of an archive that releases come in; empty when it has none of them.
std::string_view nameWithoutArchiveEnding(std::string_view fileName);

// The application's bundle in an archive.
struct ArchivedBundle {
  std::string name;       // "Karno" of Karno.app
  std::string infoPlist;  // the bytes of its Info.plist
};

// Looks for the first bundle at the top of the archive, in memory, and reads the archive to its end. A
// Failure, without the archive's name, when there is none or the archive is damaged or exceeds the limits.
ArchivedBundle bundleInArchive(Bytes archive);

}  // namespace karno::appcast
