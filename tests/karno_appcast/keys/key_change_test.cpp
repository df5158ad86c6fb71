#include <gmock/gmock.h>
#include <sys/stat.h>

#include <filesystem>
#include <string>
#include <variant>

#include "installer/unpack.h"
#include "karno-appcast/feed/feed_texts.h"
#include "platform/linux/updater/feed/appcast.h"
#include "platform/linux/updater/feed/item_choice.h"
#include "release_manager.h"

namespace karno::appcast::test {
namespace {

using karno::test::contentOf;
using platform::updates::FeedItem;
using ::testing::HasSubstr;
using ::testing::Not;

class AnySystem final : public platform::SystemVersion {
 public:
  bool isAtLeast(int /*major*/, int /*minor*/, int /*patch*/) const override { return true; }
  double appKitVersionNumber() const override { return 0; }
};

class Patient final : public installer::ExtractionObserver {
 public:
  bool goesOn(std::uint64_t /*bytesRead*/) override { return true; }
};

// A machine with an installed bundle, whose updater and installer are the launcher's.
class InstalledBundle {
 public:
  explicit InstalledBundle(const std::string& version, const std::string& publicKey)
      : version_(version), publicKey_(publicKey) {
    place_.write("Karno.app/Contents/Info.plist", infoPlist(version, version, "10.14.6", publicKey));
    const std::string program = place_.write("Karno.app/Contents/MacOS/Karno", "#!/bin/sh\n");
    ::chmod(program.c_str(), 0755);
    std::filesystem::create_directory(place_ / "new");
    ::chmod((place_ / "new").c_str(), 0700);
  }

  // Empty when it is offered nothing.
  std::string offerOf(const std::string& feed) {
    const auto items = platform::updates::parseAppcast(feed);
    const auto choice = platform::updates::chooseItem(
        items.value(), {.version = version_, .system = system_, .skippedVersion = {}, .isUserAsking = true});
    const auto* const item = std::get_if<FeedItem>(&choice);
    offered_ = item == nullptr ? FeedItem() : *item;
    return offered_.version;
  }

  // Why the archive of the last offer is not installed; empty when it is.
  std::string refusalOf(const std::string& archive) {
    Patient observer;
    const auto unpacked = installer::unpackUpdate({.archive = archive,
                                                   .lengthInBytes = offered_.length,
                                                   .signature = offered_.edSignature,
                                                   .publicKey = publicKey_,
                                                   .bundle = place_ / "Karno.app",
                                                   .into = place_ / "new"},
                                                  observer);
    return unpacked ? "" : unpacked.error().text;
  }

 private:
  const std::string version_;
  const std::string publicKey_;
  const AnySystem system_;
  const karno::test::TemporaryFolder place_;
  FeedItem offered_;
};

// Version 1 carries the old key, 2 is the last that it signs and carries the new one, 3 is of the new key.
class KeyChange : public testing::Test {
 protected:
  KeyChange() {
    manager_.addRelease("Karno-1.zip", "1", "1.0");
    manager_.writeFeed();
    manager_.addRelease("Karno-2.zip", "2", "2.0", kOtherPublicKey);
  }

  int rotate(const std::vector<std::string>& options = {"--new-public", kOtherPublicKey}) {
    std::vector<std::string> arguments{"rotate",           manager_.folder(), "--private",
                                       manager_.keyFile(), "--url-prefix",    "https://localhost/updates/"};
    arguments.insert(arguments.end(), options.begin(), options.end());
    return manager_.run(arguments);
  }

  void publishVersion3() {
    manager_.addRelease("Karno-3.zip", "3", "3.0", kOtherPublicKey);
    ASSERT_EQ(manager_.writeFeedWith(manager_.otherKeyFile()), 0) << manager_.err();
  }

  ReleaseManager manager_;
};

TEST_F(KeyChange, TakesAMachineFromTheOldKeyOverTheLastReleaseToTheNewKey) {
  ASSERT_EQ(rotate(), 0) << manager_.err();
  InstalledBundle first("1", kPublicKey);

  EXPECT_EQ(first.offerOf(manager_.feed()), "2");
  EXPECT_EQ(first.refusalOf(manager_.inFolder("Karno-2.zip")), "");
  publishVersion3();
  InstalledBundle second("2", kOtherPublicKey);
  EXPECT_EQ(second.offerOf(manager_.feed()), "3");
  EXPECT_EQ(second.refusalOf(manager_.inFolder("Karno-3.zip")), "");
}

TEST_F(KeyChange, TakesAMachineThatSleptThroughTheLastReleaseThereFirst) {
  rotate();
  publishVersion3();
  InstalledBundle first("1", kPublicKey);

  const std::string offered = first.offerOf(manager_.feed());

  EXPECT_EQ(offered, "2");
  EXPECT_EQ(first.refusalOf(manager_.inFolder("Karno-2.zip")), "");
}

// The step over the last release of the old key would end here.
TEST_F(KeyChange, LeavesTheOldKeyNothingToSayOfTheNewReleases) {
  rotate();
  publishVersion3();
  InstalledBundle second("2", kPublicKey);

  EXPECT_EQ(second.offerOf(manager_.feed()), "3");
  EXPECT_EQ(second.refusalOf(manager_.inFolder("Karno-3.zip")),
            "The signature does not belong to the archive.");
}

TEST_F(KeyChange, KeepsTheSignaturesOfTheOldKey) {
  rotate();
  const std::string before = manager_.feed().substr(manager_.feed().find("<item>"));

  publishVersion3();

  EXPECT_THAT(manager_.feed(), HasSubstr(before));
}

TEST_F(KeyChange, IsRememberedOnceHoweverOftenItIsSaid) {
  rotate();
  const std::string before = manager_.feed();

  EXPECT_EQ(rotate(), 0) << manager_.err();
  EXPECT_EQ(manager_.feed(), before);
}

TEST_F(KeyChange, LetsTheOldKeySignNothingNewer) {
  rotate();
  manager_.addRelease("Karno-3.zip", "3", "3.0");

  EXPECT_EQ(manager_.writeFeed(), 1);
  EXPECT_EQ(manager_.err(),
            "karno-appcast: Karno-3.zip: another key signs its version 3: the keys of this feed have "
            "changed\n");
}

TEST_F(KeyChange, LetsTheNewKeySignNothingOlder) {
  rotate();
  manager_.addRelease("Karno-1.zip", "1", "1.0 again", kOtherPublicKey);

  EXPECT_EQ(manager_.writeFeedWith(manager_.otherKeyFile(), {"--replace", "1"}), 1);
  EXPECT_THAT(manager_.err(), HasSubstr("Karno-1.zip: another key signs its version 1"));
}

TEST_F(KeyChange, WantsTheNewKeyInTheLastRelease) {
  manager_.addRelease("Karno-2.zip", "2", "2.0", kPublicKey);
  const std::string before = manager_.feed();

  EXPECT_EQ(rotate(), 1);
  EXPECT_EQ(manager_.err(),
            "karno-appcast: Karno-2.zip: its SUPublicEDKey is not the new key, which the last release of "
            "the old one must carry\n");
  EXPECT_EQ(manager_.feed(), before);
}

TEST_F(KeyChange, HappensOnceOnly) {
  rotate();
  manager_.addRelease("Karno-3.zip", "3", "3.0", kOtherPublicKey);

  EXPECT_EQ(rotate(), 1);
  EXPECT_EQ(manager_.err(), "karno-appcast: the feed has changed to another key with version 2 already\n");
}

TEST_F(KeyChange, CannotBeginWithAReleaseThatIsPublished) {
  std::filesystem::remove(manager_.inFolder("Karno-2.zip"));

  EXPECT_EQ(rotate(), 1);
  EXPECT_THAT(manager_.err(), HasSubstr("Karno-1.zip: its SUPublicEDKey is not the new key"));
}

TEST_F(KeyChange, WantsAnotherKeyThatIsOne) {
  EXPECT_EQ(rotate({"--new-public", kPublicKey}), 1);
  EXPECT_EQ(manager_.err(), "karno-appcast: the new key is the one that the feed has already\n");
  EXPECT_EQ(rotate({"--new-public", "AAAA"}), 64);
  EXPECT_EQ(manager_.err(),
            "karno-appcast: --new-public needs a public key: base64 of 32 bytes\n"
            "Try \"karno-appcast help rotate\".\n");
  EXPECT_EQ(rotate({}), 64);
  EXPECT_THAT(manager_.err(), HasSubstr("rotate needs --new-public"));
}

}  // namespace
}  // namespace karno::appcast::test
