#include "platform/macos/text/utf16_positions.h"

#include <algorithm>

namespace karno::platform {
namespace {

constexpr std::string_view kReplacement = "\xEF\xBF\xBD";

std::size_t lengthOfCharacter(char lead) {
  const auto byte = static_cast<unsigned char>(lead);
  return byte < 0x80 ? 1 : byte < 0xE0 ? 2 : byte < 0xF0 ? 3 : 4;
}

}  // namespace

Utf16Positions::Utf16Positions(std::string_view original, std::string_view readBack) {
  std::size_t byte = 0;
  while (!readBack.empty()) {
    const std::size_t length = lengthOfCharacter(readBack.front());
    const bool replaced =
        readBack.starts_with(kReplacement) && !original.substr(byte).starts_with(kReplacement);
    const std::size_t end = byte + (replaced ? 1 : length);
    const std::size_t units = length == 4 ? 2 : 1;
    byteOfUnit_.insert(byteOfUnit_.end(), units, byte);
    endOfUnit_.insert(endOfUnit_.end(), units, end);
    byte = end;
    readBack.remove_prefix(length);
  }
  byteOfUnit_.push_back(byte);
}

TextRange Utf16Positions::bytes(std::size_t location, std::size_t length) const {
  const std::size_t begin = std::min(location, unitCount());
  const std::size_t end = begin + std::min(length, unitCount() - begin);
  return {byteOfUnit_[begin], end == begin ? byteOfUnit_[begin] : endOfUnit_[end - 1]};
}

}  // namespace karno::platform
