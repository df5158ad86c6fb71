#include "platform/posix/processes/stream_pieces.h"

#include <cerrno>

namespace karno::platform {
namespace {

constexpr std::size_t kPieceBytesMax = 4095;

// EOF at the end and after a failure, but not when a signal handler only interrupted the wait.
int nextByte(std::FILE* stream) {
  int byte = std::fgetc(stream);
  while (byte == EOF && std::ferror(stream) != 0 && errno == EINTR) {
    std::clearerr(stream);
    byte = std::fgetc(stream);
  }
  return byte;
}

}  // namespace

// Not by fgets(), which drops what it has read of a line when the wait for the rest is interrupted.
std::optional<std::string> readPiece(std::FILE* stream) {
  std::string piece;
  while (piece.size() < kPieceBytesMax && !piece.ends_with('\n')) {
    const int byte = nextByte(stream);
    if (byte == EOF) break;
    piece += static_cast<char>(byte);
  }
  if (piece.empty()) return std::nullopt;
  return piece.substr(0, piece.find('\0'));
}

}  // namespace karno::platform
