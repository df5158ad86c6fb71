#include <sodium.h>

#include <algorithm>
#include <array>
#include <string>
#include <string_view>

#include "fuzz_target.h"
#include "installer/archive/signature.h"

namespace karno::fuzz {
namespace {

using installer::checkSignature;

// The same in every run, so that a finding can be had again.
class FixedKey {
 public:
  FixedKey() {
    mustHold(::sodium_init() >= 0, "the library starts");
    std::array<unsigned char, crypto_sign_SEEDBYTES> seed{};
    std::array<unsigned char, crypto_sign_PUBLICKEYBYTES> bytes{};
    ::crypto_sign_seed_keypair(bytes.data(), secret_.data(), seed.data());
    publicKey_ = base64(bytes.data(), bytes.size());
  }

  const std::string& publicKey() const { return publicKey_; }

  std::string sign(std::string_view message) const {
    std::array<unsigned char, crypto_sign_BYTES> bytes{};
    ::crypto_sign_detached(bytes.data(), nullptr, reinterpret_cast<const unsigned char*>(message.data()),
                           message.size(), secret_.data());
    return base64(bytes.data(), bytes.size());
  }

 private:
  static std::string base64(const unsigned char* bytes, std::size_t size) {
    std::string text(sodium_base64_encoded_len(size, sodium_base64_VARIANT_ORIGINAL), '\0');
    ::sodium_bin2base64(text.data(), text.size(), bytes, size, sodium_base64_VARIANT_ORIGINAL);
    text.pop_back();  // the closing zero
    return text;
  }

  std::array<unsigned char, crypto_sign_SECRETKEYBYTES> secret_{};
  std::string publicKey_;
};

std::string_view takeLine(std::string_view& rest) {
  const std::size_t end = std::min(rest.find('\n'), rest.size());
  const std::string_view line = rest.substr(0, end);
  rest.remove_prefix(std::min(end + 1, rest.size()));
  return line;
}

std::string withoutSpace(std::string_view text) {
  std::string kept(text);
  std::erase_if(kept, [](char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; });
  return kept;
}

// A line with a signature, a line with a key, and the message.
void check(std::string_view rest) {
  static const FixedKey key;
  const std::string_view signature = takeLine(rest);
  const std::string_view publicKey = takeLine(rest);
  checkSignature(rest, signature, publicKey);

  const std::string own = key.sign(rest);
  mustHold(!checkSignature(rest, own, key.publicKey()), "the owner's signature is good");
  const bool isGood = !checkSignature(rest, signature, key.publicKey());
  mustHold(!isGood || withoutSpace(signature) == own, "no other signature is good");
}

}  // namespace
}  // namespace karno::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  karno::fuzz::check({reinterpret_cast<const char*>(data), size});
  return 0;
}
