#include <gmock/gmock.h>

#include <filesystem>
#include <string>

#include "release_manager.h"

namespace karno::appcast::test {
namespace {

using karno::test::contentOf;
using ::testing::HasSubstr;
using ::testing::Not;

constexpr const char* kKeyOfNobody = "hPsf8t1ewC+uyWVduIlnvE1phVi04JyHv3xRg7kyhpU=";

Files releaseWithKey(const std::string& publicKey) {
  return bundle(infoPlist("2", "2.0", "10.14.6", publicKey));
}

// What keeps an archive from being signed. Neither a feed nor a signature comes of it.
class Unsigned : public testing::Test {
 protected:
  // Without the program's name and the archive's.
  std::string reason(const std::string& name, const Files& files) {
    manager_.addArchive(name, files);
    const int status = manager_.writeFeed();
    const std::string text = manager_.err();
    const bool hasFeed = std::filesystem::exists(manager_.inFolder("appcast.eddsa.xml"));
    const std::string begin = "karno-appcast: " + name + ": ";
    return status == 1 && !hasFeed && text.starts_with(begin) ? text.substr(begin.size()) : "";
  }

  std::string reasonBeside(const Entry& entry) {
    return reason("Karno.tar", joined(releaseWithKey(kPublicKey), {entry}));
  }

  ReleaseManager manager_;
};

TEST_F(Unsigned, IsABundleThatCarriesNoKey) {
  const Files files = bundle(infoPlistWith("<key>CFBundleVersion</key><string>2</string>"));

  EXPECT_EQ(reason("Karno.zip", files),
            "its bundle has no SUPublicEDKey and would never take another update\n");
}

TEST_F(Unsigned, IsABundleThatCarriesAnotherKey) {
  EXPECT_EQ(reason("Karno.zip", releaseWithKey(kOtherPublicKey)),
            "its SUPublicEDKey is not that of the private key; its bundle would never take another update\n");
}

TEST_F(Unsigned, IsABundleThatCarriesTheKeyThatNobodyHas) {
  EXPECT_EQ(reason("Karno.zip", releaseWithKey(kKeyOfNobody)),
            "its SUPublicEDKey is the key that nobody has the private half of; its bundle would never take "
            "another update\n");
}

// Any 32 bytes sign, so that only the bundle shows which half of a pair lies in the file.
TEST_F(Unsigned, IsWhatComesWithThePublicKeyInThePlaceOfThePrivateOne) {
  manager_.desk().write("private.key", std::string(kPublicKey) + "\n");

  EXPECT_EQ(reason("Karno.zip", releaseWithKey(kPublicKey)),
            "its SUPublicEDKey is what the file of the private key holds: that is the public one\n");
}

TEST_F(Unsigned, IsAnArchiveWithAHardLink) {
  EXPECT_EQ(reasonBeside({"Karno.app/Contents/hard", "Karno.app/Contents/Info.plist", Kind::HardLink}),
            "no launcher would install it: The archive's entry \"Karno.app/Contents/hard\" is a hard "
            "link.\n");
}

TEST_F(Unsigned, IsAnArchiveWithALinkThatLeadsOutOfTheBundle) {
  EXPECT_EQ(reasonBeside({"Karno.app/Contents/link", "../../elsewhere", Kind::Link}),
            "no launcher would install it: The archive's entry \"Karno.app/Contents/link\" leads out of the "
            "bundle.\n");
}

TEST_F(Unsigned, IsAnArchiveWithAPipe) {
  EXPECT_EQ(reasonBeside({"Karno.app/Contents/pipe", "", Kind::Pipe}),
            "no launcher would install it: The archive's entry \"Karno.app/Contents/pipe\" is neither file, "
            "folder nor symbolic link.\n");
}

TEST_F(Unsigned, IsAnArchiveWithANameThatLeadsUpwards) {
  EXPECT_EQ(reasonBeside({"Karno.app/../elsewhere", "bad"}),
            "no launcher would install it: The archive holds the name \"Karno.app/../elsewhere\", which "
            "leads out of its folder.\n");
}

TEST_F(Unsigned, IsAnArchiveWithAFileBesideTheBundle) {
  EXPECT_EQ(reasonBeside({"README.txt", "read me"}),
            "no launcher would install it: The archive does not hold exactly one application bundle.\n");
}

TEST_F(Unsigned, IsABundleWhoseProgramCannotBeStarted) {
  EXPECT_EQ(reason("Karno.zip", {{"Karno.app/Contents/Info.plist", infoPlist("2", "2.0")},
                                 {"Karno.app/Contents/MacOS/Karno", "#!/bin/sh\n"}}),
            "no launcher would install it: The bundle's executable is missing or cannot be executed.\n");
}

TEST_F(Unsigned, IsABundleForMacOSWithoutASeal) {
  EXPECT_EQ(reason("Karno.zip", bundle(infoPlist("2", "2.0"), "Karno", "\xca\xfe\xba\xbe and so on")),
            "its bundle is for macOS and has no _CodeSignature: no Mac would start it\n");
}

TEST_F(Unsigned, IsNotABundleForMacOSWithASeal) {
  manager_.addArchive("Karno.zip",
                      joined(bundle(infoPlist("2", "2.0"), "Karno", "\xcf\xfa\xed\xfe and so on"),
                             {{"Karno.app/Contents/_CodeSignature/CodeResources", "<plist/>"}}));

  EXPECT_EQ(manager_.writeFeed(), 0) << manager_.err();
}

TEST_F(Unsigned, IsForTheVerbSignWhatItIsForTheVerbFeed) {
  manager_.addArchive("Karno.zip", releaseWithKey(kOtherPublicKey));

  const int status = manager_.run({"sign", manager_.inFolder("Karno.zip"), "--private", manager_.keyFile()});

  EXPECT_EQ(status, 1);
  EXPECT_EQ(manager_.out(), "");
  EXPECT_THAT(manager_.err(), HasSubstr("its SUPublicEDKey is not that of the private key"));
}

// A feed that offers version 5 to systems from 11 on.
class PublishedFeed : public testing::Test {
 protected:
  PublishedFeed() {
    manager_.addRelease("Karno-5.zip", "5", "5.0");
    manager_.writeFeed({"--minimum-system", "11"});
    before_ = manager_.feed();
  }

  // Empty when the release is taken.
  std::string refusal(const std::vector<std::string>& options = {}) {
    const int status = manager_.writeFeed(options);
    return status == 1 && manager_.feed() == before_ ? manager_.err() : "";
  }

  ReleaseManager manager_;
  std::string before_;
};

TEST_F(PublishedFeed, TakesNoReleaseThatIsBelowOneForTheSameSystems) {
  manager_.addRelease("Karno-4.zip", "4", "4.0");

  EXPECT_EQ(refusal(),
            "karno-appcast: Karno-4.zip: its version 4 is not above 5, which the same machines are offered "
            "already; raise the build number, or say --older\n");
  EXPECT_EQ(refusal({"--older"}), "");
}

TEST_F(PublishedFeed, TakesAnOlderReleaseForOlderSystems) {
  manager_.addRelease("Karno-4.zip", "4", "4.0");

  EXPECT_EQ(manager_.writeFeed({"--maximum-system", "10.15.7"}), 0) << manager_.err();
  EXPECT_THAT(manager_.feed(), HasSubstr("<sparkle:maximumSystemVersion>10.15.7<"));
}

TEST_F(PublishedFeed, TakesNoReleaseOfAChannelThatIsBelowOneForEverybody) {
  manager_.addRelease("Karno-4.zip", "4", "4.0");

  EXPECT_THAT(refusal({"--channel", "beta"}), HasSubstr("its version 4 is not above 5"));
}

TEST_F(PublishedFeed, TakesAReleaseForEverybodyThatIsBelowOneOfAChannel) {
  manager_.addRelease("Karno-7.zip", "7", "7.0");
  manager_.writeFeed({"--channel", "beta"});
  manager_.addRelease("Karno-6.zip", "6", "6.0");

  EXPECT_EQ(manager_.writeFeed(), 0) << manager_.err();
}

TEST_F(PublishedFeed, TakesNoOtherArchiveUnderAPublishedVersion) {
  manager_.addRelease("Karno-5.zip", "5", "5.0.1");

  EXPECT_EQ(refusal(),
            "karno-appcast: Karno-5.zip: its version 5 is published with another archive; raise the build "
            "number, or say --replace 5\n");
  EXPECT_THAT(refusal({"--replace", "4"}), HasSubstr("is published with another archive"));
  EXPECT_EQ(manager_.writeFeed({"--replace", "5"}), 0) << manager_.err();
  EXPECT_THAT(manager_.feed(), HasSubstr("<sparkle:shortVersionString>5.0.1<"));
}

TEST_F(PublishedFeed, KnowsTheSameArchiveInAnotherPlace) {
  const std::string signature = manager_.signatureOf("Karno-5.zip");

  manager_.run({"feed", manager_.folder(), "--private", manager_.keyFile(), "--url-prefix",
                "https://localhost/moved"});

  EXPECT_THAT(manager_.feed(), HasSubstr("url=\"https://localhost/moved/Karno-5.zip\""));
  EXPECT_THAT(manager_.feed(), HasSubstr(signature));
  EXPECT_THAT(manager_.feed(), Not(HasSubstr("updates/")));
}

TEST_F(PublishedFeed, SaysWhenNothingIsThereToReplaceOrToWishFor) {
  EXPECT_EQ(refusal({"--replace", "9"}), "karno-appcast: no archive in the folder has version 9\n");
  EXPECT_EQ(refusal({"--for", "9"}), "karno-appcast: no archive in the folder has version 9\n");
  EXPECT_EQ(refusal({"--critical"}),
            "karno-appcast: no release in the folder is new to the feed; say --for VERSION\n");
}

}  // namespace
}  // namespace karno::appcast::test
