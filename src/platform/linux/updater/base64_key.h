#pragma once
#include <cstddef>
#include <string_view>

namespace karno::platform::updates {

// Whether the text can be a key for signatures: base64 of 32 bytes.
inline bool isEncodedKey(std::string_view text) {
  constexpr std::size_t kLength = 44;
  constexpr std::string_view kAlphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  return text.size() == kLength && text.back() == '=' && text.find_first_not_of(kAlphabet) == kLength - 1;
}

}  // namespace karno::platform::updates
