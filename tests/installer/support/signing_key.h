#pragma once
#include <string>

namespace karno::test {

// A pair of keys, made anew, and base64 as the feed has it.
class SigningKey {
 public:
  SigningKey();

  const std::string& publicKey() const { return publicKey_; }
  std::string signatureOf(const std::string& bytes) const;

 private:
  std::string publicKey_;
  std::string secretKey_;  // its bytes
};

std::string base64(const std::string& bytes);

}  // namespace karno::test
