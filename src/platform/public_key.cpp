#include "platform/public_key.h"

namespace karno::platform {

bool looksLikePublicKey(std::string_view text) {
  constexpr std::string_view kDigits = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  constexpr std::size_t kLetters = 44;  // the last one fills up
  if (text.size() != kLetters || text.find_first_not_of(kDigits) != kLetters - 1 || !text.ends_with('='))
    return false;
  // Of its last six bits two lie behind the 32 bytes.
  return kDigits.find(text[kLetters - 2]) % 4 == 0;
}

}  // namespace karno::platform
