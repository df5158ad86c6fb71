#include <gmock/gmock.h>
#include <sys/stat.h>

#include <filesystem>
#include <string>
#include <vector>

#include "release_manager.h"

namespace karno::appcast::test {
namespace {

using ::testing::AllOf;
using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::StartsWith;

// A feed of versions 1, 2 and 3 whose archives lie in the folder.
class Check : public testing::Test {
 protected:
  Check() {
    for (const std::string version : {"1", "2", "3"}) {
      manager_.addRelease("Karno-" + version + ".zip", version, version + ".0");
      manager_.addFile("Karno-" + version + ".txt", "New in " + version);
    }
    manager_.writeFeed();
  }

  int check(const std::vector<std::string>& options = {}) {
    std::vector<std::string> arguments{"check", feedFile(), "--archives", manager_.folder()};
    arguments.insert(arguments.end(), options.begin(), options.end());
    return manager_.run(arguments);
  }

  int checkFrom(const std::string& version, const std::string& system = "12.0") {
    return check({"--version-of-launcher", version, "--system", system, "--public-key", kPublicKey});
  }

  std::string feedFile() const { return manager_.inFolder("appcast.eddsa.xml"); }

  void write(const std::string& place, const std::string& text) {
    std::string feed = manager_.feed();
    feed.replace(feed.find(place), place.size(), text);
    manager_.addFile("appcast.eddsa.xml", feed);
  }

  // The bundle of a launcher of that version.
  std::string launcher(const std::string& version, const std::string& publicKey = kPublicKey) {
    manager_.desk().write("Karno.app/Contents/Info.plist", infoPlist(version, version, "10.14.6", publicKey));
    const std::string program = manager_.desk().write("Karno.app/Contents/MacOS/Karno", "#!/bin/sh\n");
    ::chmod(program.c_str(), 0755);
    return manager_.desk() / "Karno.app";
  }

  ReleaseManager manager_;
};

TEST_F(Check, FindsNothingWrongWithWhatTheToolWrote) {
  EXPECT_EQ(check(), 0) << manager_.out();
  EXPECT_EQ(manager_.out(), "3.0 (3)\n2.0 (2)\n1.0 (1)\n");
}

TEST_F(Check, TellsWhatALauncherIsOfferedAndWhyNotTheOthers) {
  EXPECT_EQ(checkFrom("1"), 0) << manager_.out();
  EXPECT_EQ(manager_.out(),
            "3.0 (3): offered\n"
            "2.0 (2): not offered, a newer one is offered\n"
            "1.0 (1): not offered, it is what is installed\n");
}

TEST_F(Check, TellsWhenNothingIsOffered) {
  EXPECT_EQ(checkFrom("4"), 0);
  EXPECT_EQ(manager_.out(),
            "3.0 (3): not offered, it is older than what is installed\n"
            "2.0 (2): not offered, it is older than what is installed\n"
            "1.0 (1): not offered, it is older than what is installed\n"
            "Nothing is offered.\n");
}

TEST_F(Check, KnowsSystemsChannelsAndStepsThatCannotBeTaken) {
  manager_.writeFeed({"--for", "3", "--minimum-system", "13"});
  manager_.writeFeed({"--for", "2", "--maximum-system", "11"});
  manager_.writeFeed({"--for", "1", "--channel", "beta"});

  checkFrom("0", "12.6");
  EXPECT_EQ(manager_.out(),
            "3.0 (3): not offered, it needs system 13.0.0\n"
            "2.0 (2): not offered, it is for systems up to 11.0.0\n"
            "1.0 (1): not offered, it is in the channel beta\n"
            "Nothing is offered.\n");
  write("<sparkle:minimumSystemVersion>13.0.0</sparkle:minimumSystemVersion>",
        "<sparkle:minimumUpdateVersion>2</sparkle:minimumUpdateVersion>");
  checkFrom("1", "12.6");
  EXPECT_THAT(manager_.out(), StartsWith("3.0 (3): not offered, it needs version 2 to be installed first\n"));
}

TEST_F(Check, KnowsThatItemsForThisSystemAloneHideTheOthers) {
  write("<enclosure url=\"https://localhost/updates/Karno-2.zip\"",
        "<enclosure sparkle:os=\"linux\" url=\"https://localhost/updates/Karno-2.zip\"");

  EXPECT_EQ(checkFrom("0"), 0) << manager_.out();
  EXPECT_EQ(manager_.out(),
            "3.0 (3): not offered, other items are for this system alone\n"
            "2.0 (2): offered\n"
            "1.0 (1): not offered, a newer one is offered\n");
}

TEST_F(Check, AgainstABundleTakesItsVersionAndItsKey) {
  EXPECT_EQ(check({"--against", launcher("2"), "--system", "12"}), 0) << manager_.out();
  EXPECT_THAT(manager_.out(), AllOf(HasSubstr("3.0 (3): offered\n"), HasSubstr("2.0 (2): not offered")));
  EXPECT_EQ(check({"--against", launcher("2", kOtherPublicKey), "--system", "12"}), 1);
  EXPECT_THAT(manager_.out(), HasSubstr("  wrong: The signature does not belong to the archive.\n"));
}

TEST_F(Check, SeesAnotherLength) {
  write("length=\"" + manager_.lengthOf("Karno-3.zip") + "\"", "length=\"7\"");

  EXPECT_EQ(check(), 1);
  EXPECT_THAT(manager_.out(), StartsWith("3.0 (3)\n  wrong: The archive has " +
                                         manager_.lengthOf("Karno-3.zip") + " bytes instead of 7.\n"));
  EXPECT_EQ(manager_.err(), "karno-appcast: " + feedFile() + " has 1 fault\n");
}

TEST_F(Check, SeesAnotherSignature) {
  write(manager_.signatureOf("Karno-3.zip"), manager_.signatureOf("Karno-2.zip"));

  EXPECT_EQ(checkFrom("1"), 1);
  EXPECT_THAT(manager_.out(), HasSubstr("offered\n  wrong: The signature does not belong to the archive.\n"));
}

TEST_F(Check, SeesAnAddressThatIsNotSecureAndOneThatIsNone) {
  write("https://localhost/updates/Karno-3.zip", "http://localhost/updates/Karno-3.zip");
  write("https://localhost/updates/Karno-2.zip", "localhost");

  EXPECT_EQ(check(), 1);
  EXPECT_THAT(manager_.out(), HasSubstr("  wrong: Updates come over https only, not from "
                                        "“http://localhost/updates/Karno-3.zip”.\n"));
  EXPECT_THAT(manager_.out(), HasSubstr("  wrong: “localhost” is no address"));
  EXPECT_THAT(manager_.err(), EndsWith(" has 2 faults\n"));
}

TEST_F(Check, SeesAnArchiveOfAnotherVersion) {
  write("<sparkle:version>3<", "<sparkle:version>33<");

  EXPECT_EQ(check(), 1);
  EXPECT_THAT(manager_.out(), HasSubstr("3.0 (33)\n  wrong: its archive holds version 3\n"));
}

TEST_F(Check, SeesAnArchiveThatIsNotThere) {
  std::filesystem::remove(manager_.inFolder("Karno-1.zip"));

  EXPECT_EQ(check(), 1);
  EXPECT_THAT(manager_.out(), HasSubstr("1.0 (1)\n  wrong: "));
  EXPECT_EQ(checkFrom("2"), 0);
}

TEST_F(Check, SeesItemsThatLaunchersPassOver) {
  write("</channel>", "<item><title>nothing</title></item></channel>");

  EXPECT_EQ(check(), 1);
  EXPECT_THAT(manager_.out(), HasSubstr("wrong: 1 items that launchers pass over"));
}

TEST_F(Check, SeesThatThereAreNoNotes) {
  write("<![CDATA[New in 3]]>", "");

  EXPECT_EQ(check(), 1);
  EXPECT_THAT(manager_.out(), HasSubstr("3.0 (3)\n  wrong: it has no notes\n"));
}

TEST_F(Check, SaysInALineWhenThereIsNoFeed) {
  manager_.addFile("appcast.eddsa.xml", "no feed at all");
  EXPECT_EQ(check(), 1);
  EXPECT_THAT(manager_.err(), HasSubstr(feedFile() + ": The feed could not be read: "));

  std::filesystem::resize_file(feedFile(), 100 << 20);
  EXPECT_EQ(check(), 1);
  EXPECT_EQ(manager_.err(), "karno-appcast: cannot read " + feedFile() + ": File too large\n");

  std::filesystem::resize_file(feedFile(), (16 << 20) + 1);
  EXPECT_EQ(check(), 1);
  EXPECT_EQ(manager_.err(),
            "karno-appcast: " + feedFile() + " is larger than 16 MiB, and launchers read no more\n");

  std::filesystem::remove(feedFile());
  EXPECT_EQ(check(), 1);
  EXPECT_EQ(manager_.err(), "karno-appcast: cannot read " + feedFile() + ": No such file or directory\n");
}

TEST_F(Check, ReadsNoFeedOverAnUnsafeLine) {
  EXPECT_EQ(manager_.run({"check", "http://localhost/feed.xml"}), 1);
  EXPECT_EQ(manager_.err(),
            "karno-appcast: Updates come over https only, not from “http://localhost/feed.xml”.\n");
}

TEST_F(Check, IsToldAllOfALauncherOrNothing) {
  EXPECT_EQ(check({"--version-of-launcher", "1"}), 64);
  EXPECT_EQ(check({"--system", "12"}), 64);
  EXPECT_EQ(check({"--version-of-launcher", "1", "--system", "twelve"}), 64);
  EXPECT_EQ(check({"--public-key", "AAAA"}), 64);
  EXPECT_EQ(manager_.run({"check"}), 64);
  EXPECT_EQ(check({"--against", manager_.desk() / "nowhere", "--system", "12"}), 1);
  EXPECT_EQ(manager_.err(), "karno-appcast: " + (manager_.desk() / "nowhere") +
                                ": The bundle's Info.plist cannot be read.\n");
}

}  // namespace
}  // namespace karno::appcast::test
