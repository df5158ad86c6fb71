#include "installer/archive/signature.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include "support/signing_key.h"
#include "support/update_place.h"

namespace karno::installer {
namespace {

using test::base64;
using test::SigningKey;
using test::UpdatePlace;

std::string saidOfTheSignature(const MaybeFailure& failure) {
  return failure ? std::to_string(static_cast<int>(failure->code)) + " " + failure->text : "good";
}

constexpr const char* kUnreadable = "3001 The signature cannot be read.";
constexpr const char* kForeign = "3001 The signature does not belong to the archive.";
constexpr const char* kBadKey = "3001 The public key cannot be read.";

// RFC 8032, 7.1, tests 1 and 2.
TEST(Signature, OfAKnownMessageIsGood) {
  EXPECT_EQ(saidOfTheSignature(checkSignature("",
                                              "5VZDAMNgrHKQhuLMgG6CioSHfx645dl02HPgZSJJAVVfuIIVkKM7rMYeOXAc"
                                              "+bRr0lv18FlbviRlUUFDjnoQCw==",
                                              "11qYAYKxCrfVS/7TyWQHOg7hcvPapiMlrwIaaPcHURo=")),
            "good");
  EXPECT_EQ(saidOfTheSignature(checkSignature("\x72",
                                              "kqAJqfDUyrhyDoILX2QlQKKye1QWUD+Ps3YiI+vbadoIWsHkPhWZbkWPNhPQ"
                                              "8R2MOHsurrQwKu6wDSkWErsMAA==",
                                              "PUAXw+hDiVqStwqnTRt+vJyYLM8uxJaMwM1V8Sr0Zgw=")),
            "good");
}

TEST(Signature, IsGoodForItsBytesOnly) {
  const SigningKey key;
  const std::string signature = key.signatureOf("bytes");

  EXPECT_EQ(saidOfTheSignature(checkSignature("bytes", signature, key.publicKey())), "good");
  EXPECT_EQ(saidOfTheSignature(checkSignature("Bytes", signature, key.publicKey())), kForeign);
  EXPECT_EQ(saidOfTheSignature(checkSignature("bytes ", signature, key.publicKey())), kForeign);
  EXPECT_EQ(saidOfTheSignature(checkSignature("", signature, key.publicKey())), kForeign);
}

TEST(Signature, OfNoBytesAtAllIsASignatureToo) {
  const SigningKey key;

  EXPECT_EQ(saidOfTheSignature(checkSignature("", key.signatureOf(""), key.publicKey())), "good");
}

TEST(Signature, OfAnotherKeyIsRefused) {
  const SigningKey key;
  const SigningKey other;

  EXPECT_EQ(saidOfTheSignature(checkSignature("bytes", other.signatureOf("bytes"), key.publicKey())),
            kForeign);
}

TEST(Signature, MayHaveSpaceAroundIt) {
  const SigningKey key;

  EXPECT_EQ(saidOfTheSignature(
                checkSignature("bytes", " " + key.signatureOf("bytes") + "\r\n", key.publicKey() + "\n")),
            "good");
}

TEST(Signature, OfAnotherLengthIsRefused) {
  const SigningKey key;

  EXPECT_EQ(saidOfTheSignature(checkSignature("bytes", "", key.publicKey())),
            "3001 The update is not signed.");
  EXPECT_EQ(saidOfTheSignature(checkSignature("bytes", base64(std::string(63, 's')), key.publicKey())),
            kUnreadable);
  EXPECT_EQ(saidOfTheSignature(checkSignature("bytes", base64(std::string(65, 's')), key.publicKey())),
            kUnreadable);
  EXPECT_EQ(saidOfTheSignature(checkSignature("bytes", base64(std::string(64, 's')), key.publicKey())),
            kForeign);
}

TEST(Signature, ThatIsNoBase64IsRefused) {
  const SigningKey key;
  const std::string good = key.signatureOf("bytes");

  EXPECT_EQ(saidOfTheSignature(checkSignature("bytes", "*" + good.substr(1), key.publicKey())), kUnreadable);
  EXPECT_EQ(saidOfTheSignature(checkSignature("bytes", good.substr(0, good.size() - 1), key.publicKey())),
            kUnreadable);
  EXPECT_EQ(saidOfTheSignature(checkSignature("bytes", good + "AA==", key.publicKey())), kUnreadable);
}

TEST(Signature, NeedsAKeyOf32Bytes) {
  const SigningKey key;
  const std::string good = key.signatureOf("bytes");

  EXPECT_EQ(saidOfTheSignature(checkSignature("bytes", good, "")), kBadKey);
  EXPECT_EQ(saidOfTheSignature(checkSignature("bytes", good, base64(std::string(31, 'k')))), kBadKey);
  EXPECT_EQ(saidOfTheSignature(checkSignature("bytes", good, base64(std::string(33, 'k')))), kBadKey);
  EXPECT_EQ(saidOfTheSignature(checkSignature("bytes", good, "no key")), kBadKey);
}

TEST(SignedArchive, OfAnotherLengthIsRefusedBeforeItsSignature) {
  UpdatePlace place;
  place.setArchive("bytes");
  place.request.signature = "";
  place.request.lengthInBytes = 6;

  EXPECT_EQ(place.unpack(), "2001 The archive has 5 bytes instead of 6.");
  place.request.lengthInBytes = 4;
  EXPECT_EQ(place.unpack(), "2001 The archive has 5 bytes instead of 4.");
}

TEST(SignedArchive, IsUnpackedWithoutALengthAsWell) {
  UpdatePlace place;
  place.makeArchive(test::bundleItems());
  place.request.lengthInBytes = std::nullopt;

  EXPECT_EQ(place.unpack(), "ready Karno.app");
}

TEST(SignedArchive, LeavesNothingWhenItWasSignedByAnother) {
  UpdatePlace place;
  place.makeArchive(test::bundleItems());
  place.request.signature = SigningKey().signatureOf(test::contentOf(place.archive()));

  const std::string saidOfTheSignature = place.unpack();

  EXPECT_EQ(saidOfTheSignature, kForeign);
  EXPECT_EQ(place.unpackedTree(), "");
}

TEST(SignedArchive, NeedsItsSignatureAlsoWhenItIsEmpty) {
  UpdatePlace place;
  place.setArchive("");
  place.request.signature = SigningKey().signatureOf("");

  EXPECT_EQ(place.unpack(), kForeign);
}

TEST(SignedArchive, MayNotBeAPipeThatNobodyWritesTo) {
  UpdatePlace place;
  place.request.archive = place.folder() / "pipe";
  ASSERT_EQ(::mkfifo(place.request.archive.c_str(), 0600), 0);

  EXPECT_EQ(place.unpack(), "3000 The archive is not a regular file.");
}

TEST(SignedArchive, MayNotBeReachedThroughALink) {
  UpdatePlace place;
  place.makeArchive(test::bundleItems());
  std::filesystem::create_symlink(place.archive(), place.folder() / "link");
  place.request.archive = place.folder() / "link";

  EXPECT_EQ(place.unpack(), "3000 The archive could not be unpacked: Too many levels of symbolic links.");
}

TEST(SignedArchive, MustBeAFileThatIsThere) {
  UpdatePlace place;
  place.makeArchive(test::bundleItems());

  place.request.archive = place.folder() / "nothing";
  EXPECT_EQ(place.unpack(), "3000 The archive could not be unpacked: No such file or directory.");
  place.request.archive = place.bundle();
  EXPECT_EQ(place.unpack(), "3000 The archive is not a regular file.");
  place.request.archive = "/dev/zero";
  EXPECT_EQ(place.unpack(), "3000 The archive is not a regular file.");
}

}  // namespace
}  // namespace karno::installer
