#include "karnoctl/log/log_tail.h"

#include <algorithm>
#include <cstddef>
#include <string>

namespace karno::karnoctl {

platform::Result<Tail> findTail(const platform::ReadableFile& file, std::uint64_t linesMax) {
  const std::uint64_t size = file.sizeInBytes();
  if (size == 0 || linesMax == 0) return Tail{.offset = size, .lines = 0, .end = size};

  std::uint64_t lines = 1;
  for (std::uint64_t pieceEnd = size; pieceEnd > 0;) {
    const std::uint64_t pieceBegin = pieceEnd - std::min<std::uint64_t>(pieceEnd, kPieceBytes);
    const auto piece = file.read(pieceBegin, static_cast<std::size_t>(pieceEnd - pieceBegin));
    if (!piece) return piece.error();
    const std::string& bytes = piece.value();
    for (std::size_t i = bytes.size(); i > 0; --i) {
      const std::uint64_t lineBegin = pieceBegin + i;
      if (bytes[i - 1] != '\n' || lineBegin == size) continue;
      if (lines == linesMax) return Tail{.offset = lineBegin, .lines = lines, .end = size};
      ++lines;
    }
    pieceEnd = pieceBegin;
  }
  return Tail{.offset = 0, .lines = lines, .end = size};
}

}  // namespace karno::karnoctl
