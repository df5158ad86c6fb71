#pragma once
#include <cstddef>
#include <cstdint>

namespace karno::installer {

// How much an archive may ask for. A launcher's bundle needs a fraction of each.
struct UnpackLimits {
  std::size_t entriesMax = 100'000;  // those that are passed over count as well
  std::uint64_t unpackedBytesMax = std::uint64_t{4} << 30U;
  std::size_t nameBytesMax = 4096;  // of a whole path or of a link's destination
  std::size_t depthMax = 64;        // names in a path
};

}  // namespace karno::installer
