#pragma once
#include <cstddef>
#include <string>
#include <string_view>

namespace karno::platform::cocoa {

inline constexpr char32_t kReplacementCharacter = 0xFFFD;

struct DecodedCharacter {
  char32_t character = kReplacementCharacter;
  std::size_t length = 1;  // in bytes
  bool isValid = false;
};

// The first character of a text that is not empty; a byte that is not part of UTF-8 counts as U+FFFD.
DecodedCharacter decodeUTF8(std::string_view text);

void appendUTF8(std::string& text, char32_t character);

// Surrogates and numbers beyond U+10FFFF are none.
bool isUnicodeCharacter(char32_t character);

bool isValidUTF8(std::string_view text);

// The text with each byte that is not part of UTF-8 replaced by U+FFFD.
std::string validUTF8(std::string_view text);

}  // namespace karno::platform::cocoa
