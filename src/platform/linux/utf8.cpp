#include "platform/linux/utf8.h"

#include <array>
#include <cstddef>
#include <cstdint>

namespace karno::platform {
namespace {

// The well-formed sequences of the Unicode standard, table 3-7: the range of the first byte decides the range
// of the second; further bytes are 80 to BF.
struct Sequence {
  unsigned char firstMin, firstMax, secondMin, secondMax;
  std::size_t length;
};
constexpr std::array<Sequence, 8> kSequences = {{
    {0xC2, 0xDF, 0x80, 0xBF, 2},
    {0xE0, 0xE0, 0xA0, 0xBF, 3},
    {0xE1, 0xEC, 0x80, 0xBF, 3},
    {0xED, 0xED, 0x80, 0x9F, 3},
    {0xEE, 0xEF, 0x80, 0xBF, 3},
    {0xF0, 0xF0, 0x90, 0xBF, 4},
    {0xF1, 0xF3, 0x80, 0xBF, 4},
    {0xF4, 0xF4, 0x80, 0x8F, 4},
}};

bool isBetween(char byte, unsigned char least, unsigned char most) {
  const auto value = static_cast<unsigned char>(byte);
  return value >= least && value <= most;
}

// How long the well-formed sequence at the beginning is; 0 when there is none. `bytes` is not empty.
std::size_t lengthOfSequence(std::string_view bytes) {
  if (isBetween(bytes[0], 0x00, 0x7F)) return 1;
  for (const Sequence& sequence : kSequences) {
    if (!isBetween(bytes[0], sequence.firstMin, sequence.firstMax)) continue;
    if (bytes.size() < sequence.length || !isBetween(bytes[1], sequence.secondMin, sequence.secondMax))
      return 0;
    for (std::size_t index = 2; index < sequence.length; ++index) {
      if (!isBetween(bytes[index], 0x80, 0xBF)) return 0;
    }
    return sequence.length;
  }
  return 0;
}

}  // namespace

bool isUTF8(std::string_view bytes) {
  while (!bytes.empty()) {
    const std::size_t length = lengthOfSequence(bytes);
    if (length == 0) return false;
    bytes.remove_prefix(length);
  }
  return true;
}

}  // namespace karno::platform
