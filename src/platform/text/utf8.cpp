#include "platform/text/utf8.h"

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <optional>

namespace karno::platform {
namespace {

// What a lead byte promises: how many bytes, and which smallest character keeps the form the shortest.
struct Form {
  std::size_t length = 0;
  char32_t smallest = 0;
  char32_t leadBits = 0;
};

Form formOf(unsigned char lead) {
  if (lead < 0x80) return {1, 0, lead};
  if ((lead & 0xE0) == 0xC0) return {2, 0x80, lead & 0x1FU};
  if ((lead & 0xF0) == 0xE0) return {3, 0x800, lead & 0x0FU};
  if ((lead & 0xF8) == 0xF0) return {4, 0x10000, lead & 0x07U};
  return {};
}

// The well-formed character that the text begins with; takes a single byte where there is none.
std::optional<char32_t> takeValid(std::string_view& text) {
  const std::string_view rest = text;
  text.remove_prefix(1);
  const Form form = formOf(static_cast<unsigned char>(rest.front()));
  if (form.length == 0 || form.length > rest.size()) return std::nullopt;
  char32_t character = form.leadBits;
  for (const char next : rest.substr(1, form.length - 1)) {
    const auto byte = static_cast<unsigned char>(next);
    if ((byte & 0xC0) != 0x80) return std::nullopt;
    character = (character << 6) | (byte & 0x3FU);
  }
  if (character < form.smallest || !isUnicodeCharacter(character)) return std::nullopt;
  text = rest.substr(form.length);
  return character;
}

// Nearly every text is ASCII, which is passed eight bytes at a time.
void skipASCII(std::string_view& text) {
  constexpr std::uint64_t kHighBits = 0x8080808080808080;
  std::uint64_t eight = 0;
  while (text.size() >= sizeof eight) {
    std::memcpy(&eight, text.data(), sizeof eight);
    if ((eight & kHighBits) != 0) return;
    text.remove_prefix(sizeof eight);
  }
}

bool isLead(char32_t unit) { return unit >= 0xD800 && unit < 0xDC00; }
bool isTrail(char32_t unit) { return unit >= 0xDC00 && unit < 0xE000; }

}  // namespace

bool isUnicodeCharacter(char32_t character) {
  return character <= 0x10FFFF && (character < 0xD800 || character > 0xDFFF);
}

char32_t takeCharacter(std::string_view& text) { return takeValid(text).value_or(kReplacementCharacter); }

void appendUTF8(std::string& text, char32_t character) {
  if (!isUnicodeCharacter(character)) character = kReplacementCharacter;
  const auto add = [&text](char32_t byte) { text.push_back(static_cast<char>(byte)); };
  const auto addTail = [&](int shift) { add(0x80 | ((character >> shift) & 0x3F)); };
  if (character < 0x80) {
    add(character);
  } else if (character < 0x800) {
    add(0xC0 | (character >> 6));
    addTail(0);
  } else if (character < 0x10000) {
    add(0xE0 | (character >> 12));
    addTail(6);
    addTail(0);
  } else {
    add(0xF0 | (character >> 18));
    addTail(12);
    addTail(6);
    addTail(0);
  }
}

bool isValidUTF8(std::string_view text) {
  for (skipASCII(text); !text.empty(); skipASCII(text)) {
    if (!takeValid(text)) return false;
  }
  return true;
}

std::string validUTF8(std::string_view text) {
  if (isValidUTF8(text)) return std::string(text);
  std::string valid;
  while (!text.empty()) appendUTF8(valid, takeCharacter(text));
  return valid;
}

std::u16string utf16OfUTF8(std::string_view text) {
  std::u16string units;
  units.reserve(text.size());
  while (!text.empty()) {
    const char32_t character = takeCharacter(text);
    if (character < 0x10000) {
      units.push_back(static_cast<char16_t>(character));
    } else {
      units.push_back(static_cast<char16_t>(0xD800 + ((character - 0x10000) >> 10)));
      units.push_back(static_cast<char16_t>(0xDC00 + (character & 0x3FF)));
    }
  }
  return units;
}

std::string utf8OfUTF16(std::u16string_view units) {
  std::string text;
  text.reserve(units.size());
  for (std::size_t index = 0; index < units.size(); ++index) {
    char32_t character = units[index];
    if (isLead(character) && index + 1 < units.size() && isTrail(units[index + 1])) {
      ++index;
      character = 0x10000 + ((character - 0xD800) << 10) + (units[index] - char32_t{0xDC00});
    }
    appendUTF8(text, character);
  }
  return text;
}

}  // namespace karno::platform
