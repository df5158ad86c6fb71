#include "karnoctl/log/line_reading.h"

#include <algorithm>

#include "karnoctl/log/log_tail.h"

namespace karno::karnoctl {
namespace {

constexpr std::size_t kLineBytesMax = 64U << 10U;

// A log that went through another system may have its newlines.
std::string_view withoutReturn(std::string_view line) {
  return line.ends_with('\r') ? line.substr(0, line.size() - 1) : line;
}

}  // namespace

ReadingOfLines readLogLines(const platform::FileReading& reading, const std::string& path,
                            const std::function<void(std::string_view)>& take) {
  const auto file = reading.open(path);
  if (!file) return {.error = file.error()};
  const std::uint64_t size = file.value()->sizeInBytes();
  ReadingOfLines read{.error = std::nullopt, .isOfEndOnly = size > kLogBytesMax};
  std::string waiting;
  for (std::uint64_t offset = size - std::min(size, kLogBytesMax); offset < size;) {
    const auto piece = file.value()->read(offset, kPieceBytes);
    if (!piece) read.error = piece.error();
    if (!piece || piece.value().empty()) break;
    offset += piece.value().size();
    std::string_view bytes = piece.value();
    for (std::size_t end = bytes.find('\n'); end != std::string_view::npos; end = bytes.find('\n')) {
      take(withoutReturn(waiting.append(bytes.substr(0, end))));
      waiting.clear();
      bytes.remove_prefix(end + 1);
    }
    waiting.append(bytes);
    read.endsWithinLine = !waiting.empty();
    if (waiting.size() > kLineBytesMax) waiting.clear();
  }
  return read;
}

}  // namespace karno::karnoctl
