#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cstdint>
#include <filesystem>

#include "release_manager.h"

namespace karno::appcast::test {
namespace {

TEST(Signatures, ArePrintedAsAnEnclosureHasThem) {
  ReleaseManager manager;
  manager.addFile("empty.zip", "");

  const int status =
      manager.run({"sign", manager.inFolder("empty.zip"), "--private", manager.keyFile(), "--any-file"});

  // The message of RFC 8032's first example is empty.
  EXPECT_EQ(status, 0);
  EXPECT_EQ(
      manager.out(),
      "sparkle:edSignature=\"5VZDAMNgrHKQhuLMgG6CioSHfx645dl02HPgZSJJAVVfuIIVkKM7rMYeOXAc+bRr0lv18FlbviRlU"
      "UFDjnoQCw==\" length=\"0\"\n");
}

TEST(Signatures, FitTheArchiveThatWasSigned) {
  ReleaseManager manager;
  manager.addFile("Karno.zip", "the archive");
  const std::string signature = manager.signatureOf("Karno.zip");

  const int status = manager.run(
      {"verify", manager.inFolder("Karno.zip"), "--signature", signature, "--public-key", kPublicKey});

  EXPECT_EQ(status, 0);
  EXPECT_EQ(manager.out(), manager.inFolder("Karno.zip") + " is signed by the owner of this key\n");
}

TEST(Signatures, DoNotFitOnceOneByteIsAnother) {
  ReleaseManager manager;
  manager.addFile("Karno.zip", "the archive");
  const std::string signature = manager.signatureOf("Karno.zip");
  manager.addFile("Karno.zip", "the archivf");

  const int status = manager.run(
      {"verify", manager.inFolder("Karno.zip"), "--signature", signature, "--public-key", kPublicKey});

  EXPECT_EQ(status, 1);
  EXPECT_EQ(manager.out(), "");
  EXPECT_EQ(manager.err(), "karno-appcast: " + manager.inFolder("Karno.zip") +
                               " does not have this signature by the owner of this key\n");
}

TEST(Signatures, DoNotFitAnotherKey) {
  ReleaseManager manager;
  manager.addFile("Karno.zip", "the archive");
  const std::string signature = manager.signatureOf("Karno.zip");

  const int status = manager.run({"verify", manager.inFolder("Karno.zip"), "--signature", signature,
                                  "--public-key", "PUAXw+hDiVqStwqnTRt+vJyYLM8uxJaMwM1V8Sr0Zgw="});

  EXPECT_EQ(status, 1);
}

TEST(Signatures, ATextThatCannotBeOneIsRefused) {
  ReleaseManager manager;
  manager.addFile("Karno.zip", "the archive");

  const int status = manager.run(
      {"verify", manager.inFolder("Karno.zip"), "--signature", "AAAA", "--public-key", kPublicKey});

  EXPECT_EQ(status, 1);
  EXPECT_EQ(manager.err(), "karno-appcast: this is no signature: base64 of 64 bytes is wanted\n");
}

TEST(Signatures, ATextThatCannotBeAPublicKeyIsRefused) {
  ReleaseManager manager;
  manager.addFile("Karno.zip", "the archive");
  const std::string signature = manager.signatureOf("Karno.zip");

  const int status = manager.run(
      {"verify", manager.inFolder("Karno.zip"), "--signature", signature, "--public-key", "AAAA"});

  EXPECT_EQ(status, 1);
  EXPECT_EQ(manager.err(), "karno-appcast: this is no public key: base64 of 32 bytes is wanted\n");
}

TEST(Signatures, AreNotWaitedForAtAPipe) {
  ReleaseManager manager;
  const std::string pipe = manager.inFolder("pipe.zip");
  ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);

  EXPECT_EQ(manager.run({"sign", pipe, "--private", manager.keyFile(), "--any-file"}), 1);
  EXPECT_EQ(manager.err(), "karno-appcast: " + pipe + " is no file\n");
}

TEST(Signatures, AreNotMadeOfAnArchiveOfMoreThanFourGibibytes) {
  ReleaseManager manager;
  manager.addFile("huge.zip", "");
  std::filesystem::resize_file(manager.inFolder("huge.zip"), (std::uintmax_t{4} << 30U) + 1);

  EXPECT_EQ(manager.run({"sign", manager.inFolder("huge.zip"), "--private", manager.keyFile(), "--any-file"}),
            1);
  EXPECT_EQ(manager.err(), "karno-appcast: " + manager.inFolder("huge.zip") + " is larger than 4 GiB\n");
}

TEST(Signatures, NeedAnArchive) {
  ReleaseManager manager;

  EXPECT_EQ(manager.run({"sign", manager.inFolder("none.zip"), "--private", manager.keyFile(), "--any-file"}),
            1);
  EXPECT_EQ(manager.err(),
            "karno-appcast: cannot read " + manager.inFolder("none.zip") + ": No such file or directory\n");
  EXPECT_EQ(manager.run({"sign", manager.folder(), "--private", manager.keyFile(), "--any-file"}), 1);
  EXPECT_EQ(manager.err(), "karno-appcast: " + manager.folder() + " is no file\n");
}

}  // namespace
}  // namespace karno::appcast::test
