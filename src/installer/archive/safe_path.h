#pragma once
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "installer/archive/failure.h"

namespace karno::installer {

// How much an archive may ask for. A launcher's bundle needs a fraction of each.
struct UnpackLimits {
  std::size_t entriesMax = 100'000;  // those that are passed over count as well
  std::uint64_t unpackedBytesMax = std::uint64_t{4} << 30U;
  std::size_t nameBytesMax = 4096;  // of a whole path or of a link's destination
  std::size_t depthMax = 64;        // names in a path
};

// The names that lead from the folder that is unpacked into to an entry: none of them is empty, "." or "..",
// and none holds a "/" or a NUL. No names at all: the folder itself.
using SafePath = std::vector<std::string>;

// The place that an archive's name asks for. "." and doubled or closing "/" are dropped as every unpacker
// does. Refused: absolute names, "..", an empty name, a NUL, what is not UTF-8, and what is over the limits.
Outcome<SafePath> safePath(std::string_view name, const UnpackLimits& limits);

// What a Mac's archiver adds beside the files: the folder "__MACOSX" and, where `isFile`, "._" files.
bool isPassedOver(const SafePath& path, bool isFile);

// Whether a symbolic link at `place` stays inside the top-level folder of its place wherever it leads. ".."
// may stand only at the beginning of `target`: after a name it would count from wherever that name leads,
// should it be a link itself.
bool staysInside(const SafePath& place, std::string_view target, const UnpackLimits& limits);

// For messages.
std::string joined(const SafePath& path);

}  // namespace karno::installer
