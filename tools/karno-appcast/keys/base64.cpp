#include "karno-appcast/keys/base64.h"

#include <sodium.h>

namespace karno::appcast {

std::string base64(std::span<const unsigned char> bytes) {
  // The room includes a NUL at the end.
  std::string text(sodium_base64_encoded_len(bytes.size(), sodium_base64_VARIANT_ORIGINAL), '\0');
  sodium_bin2base64(text.data(), text.size(), bytes.data(), bytes.size(), sodium_base64_VARIANT_ORIGINAL);
  text.pop_back();
  return text;
}

std::optional<std::vector<unsigned char>> bytesOfBase64(std::string_view text, std::size_t count) {
  std::vector<unsigned char> bytes(count);
  std::size_t length = 0;
  const char* end = nullptr;
  const int outcome = sodium_base642bin(bytes.data(), bytes.size(), text.data(), text.size(), nullptr,
                                        &length, &end, sodium_base64_VARIANT_ORIGINAL);
  if (outcome != 0 || length != count || end != text.data() + text.size()) return std::nullopt;
  return bytes;
}

}  // namespace karno::appcast
