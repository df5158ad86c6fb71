#include "platform/cocoa/unicode.h"

namespace karno::platform::cocoa {
namespace {

unsigned byteAt(std::string_view text, std::size_t index) { return static_cast<unsigned char>(text[index]); }

// What a lead byte promises: how many bytes, and which smallest character keeps the form the shortest.
struct Form {
  std::size_t length = 0;
  char32_t smallest = 0;
  unsigned leadBits = 0;
};

Form formOf(unsigned lead) {
  if (lead < 0x80) {
    return {1, 0, lead};
  }
  if (lead >= 0xC2 && lead < 0xE0) {
    return {2, 0x80, lead & 0x1F};
  }
  if (lead >= 0xE0 && lead < 0xF0) {
    return {3, 0x800, lead & 0x0F};
  }
  if (lead >= 0xF0 && lead < 0xF5) {
    return {4, 0x10000, lead & 0x07};
  }
  return {};
}

}  // namespace

bool isUnicodeCharacter(char32_t character) {
  return character <= 0x10FFFF && (character < 0xD800 || character > 0xDFFF);
}

DecodedCharacter decodeUTF8(std::string_view text) {
  const Form form = formOf(byteAt(text, 0));
  if (form.length == 0 || form.length > text.size()) {
    return {};
  }
  char32_t character = form.leadBits;
  for (std::size_t index = 1; index < form.length; ++index) {
    const unsigned next = byteAt(text, index);
    if ((next & 0xC0) != 0x80) {
      return {};
    }
    character = (character << 6) | (next & 0x3F);
  }
  if (character < form.smallest || !isUnicodeCharacter(character)) {
    return {};
  }
  return {character, form.length, true};
}

void appendUTF8(std::string& text, char32_t character) {
  const auto add = [&text](char32_t byte) { text.push_back(static_cast<char>(byte)); };
  if (character < 0x80) {
    add(character);
  } else if (character < 0x800) {
    add(0xC0 | (character >> 6));
    add(0x80 | (character & 0x3F));
  } else if (character < 0x10000) {
    add(0xE0 | (character >> 12));
    add(0x80 | ((character >> 6) & 0x3F));
    add(0x80 | (character & 0x3F));
  } else {
    add(0xF0 | (character >> 18));
    add(0x80 | ((character >> 12) & 0x3F));
    add(0x80 | ((character >> 6) & 0x3F));
    add(0x80 | (character & 0x3F));
  }
}

bool isValidUTF8(std::string_view text) {
  while (!text.empty()) {
    const DecodedCharacter next = decodeUTF8(text);
    if (!next.isValid) {
      return false;
    }
    text.remove_prefix(next.length);
  }
  return true;
}

std::string validUTF8(std::string_view text) {
  std::string answer;
  answer.reserve(text.size());
  while (!text.empty()) {
    const DecodedCharacter next = decodeUTF8(text);
    appendUTF8(answer, next.character);
    text.remove_prefix(next.length);
  }
  return answer;
}

}  // namespace karno::platform::cocoa
