#include "installer/archive/signature.h"

#include <sodium.h>

#include <array>
#include <cstddef>
#include <string>

namespace karno::installer {
namespace {

Failure signatureFailure(const char* text) { return {FailureCode::Signature, text}; }

// Whether the text is base64 of exactly as many bytes, with its padding and nothing around it but white
// space.
template <std::size_t size>
bool decode(std::string_view text, std::array<unsigned char, size>& bytes) {
  std::size_t length = 0;
  const char* end = nullptr;
  if (::sodium_base642bin(bytes.data(), bytes.size(), text.data(), text.size(), " \t\r\n", &length, &end,
                          sodium_base64_VARIANT_ORIGINAL) != 0)
    return false;
  return length == size && end == text.data() + text.size();
}

}  // namespace

MaybeFailure checkSignature(std::string_view bytes, std::string_view signature, std::string_view publicKey) {
  if (::sodium_init() < 0) return signatureFailure("The signature cannot be checked on this machine.");

  std::array<unsigned char, crypto_sign_PUBLICKEYBYTES> key{};
  if (!decode(publicKey, key)) return signatureFailure("The public key cannot be read.");
  if (signature.empty()) return signatureFailure("The update is not signed.");
  std::array<unsigned char, crypto_sign_BYTES> signatureBytes{};
  if (!decode(signature, signatureBytes)) return signatureFailure("The signature cannot be read.");

  const auto* message = reinterpret_cast<const unsigned char*>(bytes.data());
  if (::crypto_sign_verify_detached(signatureBytes.data(), message, bytes.size(), key.data()) != 0)
    return signatureFailure("The signature does not belong to the archive.");
  return std::nullopt;
}

}  // namespace karno::installer
