#pragma once
#include <string>
#include <string_view>

// The launcher's texts are UTF-8, whose bytes may be wrong: each byte that begins no well-formed character
// (none that is overlong, a surrogate or beyond U+10FFFF) reads as one U+FFFD.
namespace karno::platform {

inline constexpr char32_t kReplacementCharacter = 0xFFFD;

// Surrogates and numbers beyond U+10FFFF are none.
bool isUnicodeCharacter(char32_t character);

// Takes the first character off a text that is not empty.
char32_t takeCharacter(std::string_view& text);

// What is no character is appended as U+FFFD.
void appendUTF8(std::string& text, char32_t character);

bool isValidUTF8(std::string_view text);

// The text with U+FFFD in place of each byte that is wrong.
std::string validUTF8(std::string_view text);

std::u16string utf16OfUTF8(std::string_view text);

// A surrogate without its other half becomes U+FFFD.
std::string utf8OfUTF16(std::u16string_view units);

}  // namespace karno::platform
