#pragma once
#include <string_view>

namespace karno {

// Takes the first character off a non-empty UTF-8 text. A byte that begins no valid sequence is taken alone
// and reads as U+FFFD.
char32_t takeCodePoint(std::string_view& text);

bool isValidUtf8(std::string_view text);

}  // namespace karno
