#include "support/signing_key.h"

#include <sodium.h>

#include <stdexcept>

namespace karno::test {
namespace {

unsigned char* writable(std::string& bytes) { return reinterpret_cast<unsigned char*>(bytes.data()); }

const unsigned char* readable(const std::string& bytes) {
  return reinterpret_cast<const unsigned char*>(bytes.data());
}

}  // namespace

SigningKey::SigningKey() : secretKey_(crypto_sign_SECRETKEYBYTES, '\0') {
  if (::sodium_init() < 0) throw std::runtime_error("no random numbers");
  std::string publicBytes(crypto_sign_PUBLICKEYBYTES, '\0');
  ::crypto_sign_keypair(writable(publicBytes), writable(secretKey_));
  publicKey_ = base64(publicBytes);
}

std::string SigningKey::signatureOf(const std::string& bytes) const {
  std::string signature(crypto_sign_BYTES, '\0');
  ::crypto_sign_detached(writable(signature), nullptr, readable(bytes), bytes.size(), readable(secretKey_));
  return base64(signature);
}

std::string base64(const std::string& bytes) {
  std::string text(sodium_base64_encoded_len(bytes.size(), sodium_base64_VARIANT_ORIGINAL), '\0');
  ::sodium_bin2base64(text.data(), text.size(), readable(bytes), bytes.size(),
                      sodium_base64_VARIANT_ORIGINAL);
  text.pop_back();  // the closing zero
  return text;
}

}  // namespace karno::test
