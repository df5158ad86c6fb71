#include "platform/posix/stream_pieces.h"

#include <array>
#include <cerrno>

namespace karno::platform {
namespace {

constexpr int kBufferBytes = 4096;

}  // namespace

std::optional<std::string> readPiece(std::FILE* stream) {
  std::array<char, kBufferBytes> buffer;
  while (std::fgets(buffer.data(), kBufferBytes, stream) == nullptr) {
    const bool isOnlyInterrupted = std::ferror(stream) != 0 && errno == EINTR;
    if (!isOnlyInterrupted) return std::nullopt;
    std::clearerr(stream);
  }
  return std::string(buffer.data());
}

}  // namespace karno::platform
