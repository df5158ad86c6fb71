#pragma once
#include <cstddef>
#include <cstdint>

#include "platform/file_reading.h"

namespace karno::karnoctl {

// Logs are read in pieces of this size.
inline constexpr std::size_t kPieceBytes = 64U << 10U;

struct Tail {
  std::uint64_t offset = 0;  // where the first of the lines begins
  std::uint64_t lines = 0;   // how many there are
  std::uint64_t end = 0;     // the size of the file when it was asked
  bool operator==(const Tail&) const = default;
};

// Finds the last lines of a file, `linesMax` at most. Reads backwards in pieces, so that the size of the file
// does not matter. Text behind the last newline is a line.
platform::Result<Tail> findTail(const platform::ReadableFile& file, std::uint64_t linesMax);

}  // namespace karno::karnoctl
