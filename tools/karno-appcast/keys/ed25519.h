#pragma once
#include <array>
#include <span>
#include <string>
#include <string_view>

namespace karno::appcast {

using Bytes = std::span<const unsigned char>;

// The key that signs releases: the 32 bytes that RFC 8032 begins with. Wiped from memory when it goes.
class PrivateKey {
 public:
  // A new key from the system's source of random numbers.
  static PrivateKey random();

  // From its base64 form; a Failure when it is not that of 32 bytes.
  static PrivateKey fromText(std::string_view base64);

  PrivateKey(PrivateKey&&) noexcept = default;
  PrivateKey& operator=(PrivateKey&&) = delete;
  ~PrivateKey();

  std::string text() const;       // base64 of the 32 bytes
  std::string publicKey() const;  // base64, as the bundle's Info.plist has it

  // The signature of exactly these bytes, in base64.
  std::string signatureOf(Bytes bytes) const;

 private:
  PrivateKey() = default;

  std::array<unsigned char, 32> seed_ = {};
};

// Whether the signature is that of these bytes by the owner of the public key, both in base64. A Failure when
// one of them cannot be a signature or a key.
bool isSignatureOf(Bytes bytes, std::string_view signature, std::string_view publicKey);

}  // namespace karno::appcast
