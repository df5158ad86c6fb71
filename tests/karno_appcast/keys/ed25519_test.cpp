#include "karno-appcast/keys/ed25519.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "karno-appcast/failure.h"
#include "karno-appcast/keys/base64.h"

namespace karno::appcast::test {
namespace {

std::vector<unsigned char> bytesOf(const std::string& hexadecimal) {
  std::vector<unsigned char> bytes;
  for (std::size_t i = 0; i < hexadecimal.size(); i += 2)
    bytes.push_back(static_cast<unsigned char>(std::stoul(hexadecimal.substr(i, 2), nullptr, 16)));
  return bytes;
}

// An example of RFC 8032, section 7.1, with numbers in hexadecimal.
struct Example {
  std::string privateKey;
  std::string publicKey;
  std::string message;
  std::string signature;
};

const Example kExamples[] = {{"9d61b19deffd5a60ba844af492ec2cc44449c5697b326919703bac031cae7f60",
                              "d75a980182b10ab7d54bfed3c964073a0ee172f3daa62325af021a68f707511a", "",
                              "e5564300c360ac729086e2cc806e828a84877f1eb8e5d974d873e065224901555fb8821590a33b"
                              "acc61e39701cf9b46bd25bf5f05"
                              "95bbe24655141438e7a100b"},
                             {"4ccd089b28ff96da9db6c346ec114e0f5b8a319f35aba624da8cf6ed4fb8a6fb",
                              "3d4017c3e843895a92b70aa74d1b7ebc9c982ccf2ec4968cc0cd55f12af4660c", "72",
                              "92a009a9f0d4cab8720e820b5f642540a2b27b5416503f8fb3762223ebdb69da085ac1e43e1599"
                              "6e458f3613d0f11d8c387b2eaeb"
                              "4302aeeb00d291612bb0c00"},
                             {"c5aa8df43f9f837bedb7442f31dcb7b166d38535076f094b85ce3a2e0b4458f7",
                              "fc51cd8e6218a1a38da47ed00230f0580816ed13ba3303ac5deb911548908025", "af82",
                              "6291d657deec24024827e69c3abe01a30ce548a284743a445e3680d7db5ac3ac18ff9b538d16f2"
                              "90ae67f760984dc6594a7c15e97"
                              "16ed28dc027beceea1ec40a"}};

class Ed25519 : public testing::TestWithParam<Example> {
 protected:
  const std::vector<unsigned char> message_ = bytesOf(GetParam().message);
  const std::string publicKey_ = base64(bytesOf(GetParam().publicKey));
  const std::string signature_ = base64(bytesOf(GetParam().signature));
  const PrivateKey key_ = PrivateKey::fromText(base64(bytesOf(GetParam().privateKey)));
};

TEST_P(Ed25519, GivesThePublicKeyOfTheStandard) { EXPECT_EQ(key_.publicKey(), publicKey_); }

TEST_P(Ed25519, GivesTheSignatureOfTheStandard) { EXPECT_EQ(key_.signatureOf(message_), signature_); }

TEST_P(Ed25519, AcceptsTheSignatureOfTheStandard) {
  EXPECT_TRUE(isSignatureOf(message_, signature_, publicKey_));
}

TEST_P(Ed25519, RefusesTheSignatureForALongerMessage) {
  std::vector<unsigned char> longer = message_;
  longer.push_back(0);

  EXPECT_FALSE(isSignatureOf(longer, signature_, publicKey_));
}

INSTANTIATE_TEST_SUITE_P(RFC8032, Ed25519, testing::ValuesIn(kExamples));

TEST(Ed25519Keys, AreAnotherPairEveryTime) {
  EXPECT_NE(PrivateKey::random().publicKey(), PrivateKey::random().publicKey());
}

TEST(Ed25519Keys, ComeBackFromTheirText) {
  const PrivateKey key = PrivateKey::random();

  const PrivateKey again = PrivateKey::fromText(key.text());

  EXPECT_EQ(again.publicKey(), key.publicKey());
  EXPECT_EQ(key.text().size(), 44U);
}

TEST(Ed25519Keys, RefuseATextOfAnotherLength) {
  EXPECT_THROW(PrivateKey::fromText(""), Failure);
  EXPECT_THROW(PrivateKey::fromText("AAAA"), Failure);
  EXPECT_THROW(PrivateKey::fromText(base64(std::vector<unsigned char>(33))), Failure);
  EXPECT_THROW(PrivateKey::fromText(base64(std::vector<unsigned char>(32)) + " "), Failure);
}

}  // namespace
}  // namespace karno::appcast::test
