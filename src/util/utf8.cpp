#include "util/utf8.h"

#include <cstddef>

namespace karno {
namespace {

constexpr char32_t kReplacement = 0xFFFD;

struct Lead {
  std::size_t length;
  char32_t bits;
  char32_t lowest;  // a longer form of a smaller number is not valid
};

Lead leadOf(unsigned char byte) {
  if (byte < 0x80) return {1, byte, 0};
  if ((byte & 0xE0) == 0xC0) return {2, byte & 0x1FU, 0x80};
  if ((byte & 0xF0) == 0xE0) return {3, byte & 0x0FU, 0x800};
  if ((byte & 0xF8) == 0xF0) return {4, byte & 0x07U, 0x10000};
  return {0, 0, 0};
}

bool isValid(char32_t codePoint, char32_t lowest) {
  return codePoint >= lowest && codePoint <= 0x10FFFF && (codePoint < 0xD800 || codePoint > 0xDFFF);
}

}  // namespace

char32_t takeCodePoint(std::string_view& text) {
  const Lead lead = leadOf(static_cast<unsigned char>(text.front()));
  char32_t codePoint = lead.bits;
  bool valid = lead.length != 0 && lead.length <= text.size();
  for (std::size_t i = 1; valid && i < lead.length; ++i) {
    const auto byte = static_cast<unsigned char>(text[i]);
    valid = (byte & 0xC0) == 0x80;
    codePoint = (codePoint << 6) | (byte & 0x3FU);
  }
  valid = valid && isValid(codePoint, lead.lowest);
  text.remove_prefix(valid ? lead.length : 1);
  return valid ? codePoint : kReplacement;
}

bool isValidUtf8(std::string_view text) {
  while (!text.empty()) {
    const std::size_t before = text.size();
    // The replacement character itself has three bytes.
    if (takeCodePoint(text) == kReplacement && before - text.size() == 1) return false;
  }
  return true;
}

}  // namespace karno
