#include "karno-appcast/keys/ed25519.h"

#include <sodium.h>

#include <algorithm>

#include "karno-appcast/failure.h"
#include "karno-appcast/keys/base64.h"

namespace karno::appcast {
namespace {

void startLibrary() {
  if (sodium_init() < 0) throw Failure("the library for signatures does not start");
}

// What the library signs with: the seed and what follows from it.
struct KeyPair {
  explicit KeyPair(const std::array<unsigned char, 32>& seed) {
    startLibrary();
    crypto_sign_seed_keypair(publicKey.data(), secretKey.data(), seed.data());
  }
  ~KeyPair() { sodium_memzero(secretKey.data(), secretKey.size()); }
  KeyPair(const KeyPair&) = delete;
  KeyPair& operator=(const KeyPair&) = delete;

  std::array<unsigned char, crypto_sign_PUBLICKEYBYTES> publicKey = {};
  std::array<unsigned char, crypto_sign_SECRETKEYBYTES> secretKey = {};
};

}  // namespace

PrivateKey PrivateKey::random() {
  startLibrary();
  PrivateKey key;
  randombytes_buf(key.seed_.data(), key.seed_.size());
  return key;
}

PrivateKey PrivateKey::fromText(std::string_view base64) {
  startLibrary();
  PrivateKey key;
  auto bytes = bytesOfBase64(base64, key.seed_.size());
  if (!bytes) throw Failure("this is no private key: base64 of 32 bytes is wanted");
  std::copy(bytes->begin(), bytes->end(), key.seed_.begin());
  sodium_memzero(bytes->data(), bytes->size());
  return key;
}

PrivateKey::~PrivateKey() { sodium_memzero(seed_.data(), seed_.size()); }

std::string PrivateKey::text() const { return base64(seed_); }

std::string PrivateKey::publicKey() const { return base64(KeyPair(seed_).publicKey); }

std::string PrivateKey::signatureOf(Bytes bytes) const {
  const KeyPair pair(seed_);
  std::array<unsigned char, crypto_sign_BYTES> signature = {};
  crypto_sign_detached(signature.data(), nullptr, bytes.data(), bytes.size(), pair.secretKey.data());
  return base64(signature);
}

bool isSignatureOf(Bytes bytes, std::string_view signature, std::string_view publicKey) {
  startLibrary();
  const auto key = bytesOfBase64(publicKey, crypto_sign_PUBLICKEYBYTES);
  if (!key) throw Failure("this is no public key: base64 of 32 bytes is wanted");
  const auto bytesOfSignature = bytesOfBase64(signature, crypto_sign_BYTES);
  if (!bytesOfSignature) throw Failure("this is no signature: base64 of 64 bytes is wanted");
  return crypto_sign_verify_detached(bytesOfSignature->data(), bytes.data(), bytes.size(), key->data()) == 0;
}

}  // namespace karno::appcast
