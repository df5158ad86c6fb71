#include <gmock/gmock.h>

#include <string>

#include "release_manager.h"

namespace karno::appcast::test {
namespace {

using ::testing::HasSubstr;
using ::testing::Not;

// A feed of one release, into which somebody then writes.
class KeptItem : public testing::Test {
 protected:
  KeptItem() {
    manager_.addRelease("Karno.zip", "1", "1.0");
    manager_.writeFeed();
  }

  void write(const std::string& place, const std::string& text) {
    std::string feed = manager_.feed();
    feed.replace(feed.find(place), place.size(), text);
    manager_.addFile("appcast.eddsa.xml", feed);
  }

  ReleaseManager manager_;
};

TEST_F(KeptItem, HasWhatSomebodyWroteThoughItsArchiveIsInTheFolder) {
  write("<title>Karno 1.0</title>", "<title>The first one</title>");
  write("<enclosure ",
        "<sparkle:hardwareRequirements>arm64</sparkle:hardwareRequirements>\n      "
        "<description xml:lang=\"it\">Ciao</description>\n      <enclosure sparkle:os=\"macos\" ");
  const std::string before = manager_.feed();

  const int status = manager_.writeFeed();

  EXPECT_EQ(status, 0) << manager_.err();
  EXPECT_EQ(manager_.feed(), before);
}

TEST_F(KeptItem, KeepsItsDateWhenTheSameArchiveIsCopied) {
  const std::string before = manager_.feed();
  manager_.setDate("Karno.zip", 1'800'000'000);

  manager_.writeFeed();

  EXPECT_EQ(manager_.feed(), before);
}

TEST_F(KeptItem, HasStrangersElementsAlsoWithAnotherArchive) {
  write("<enclosure ", "<sparkle:tags><beta/></sparkle:tags><enclosure sparkle:os=\"macos\" ");
  manager_.addRelease("Karno.zip", "1", "1.0.1");

  const int status = manager_.writeFeed({"--replace", "1"});

  EXPECT_EQ(status, 0) << manager_.err();
  EXPECT_THAT(manager_.feed(), HasSubstr("<beta />"));
  EXPECT_THAT(manager_.feed(), HasSubstr("sparkle:os=\"macos\""));
  EXPECT_THAT(manager_.feed(), HasSubstr("<title>Karno 1.0.1</title>"));
  EXPECT_THAT(manager_.feed(), HasSubstr(manager_.signatureOf("Karno.zip")));
}

TEST_F(KeptItem, HasTheNotesOfTheFolderWhereThereAreSome) {
  manager_.addFile("Karno.html", "<p>First</p>");
  manager_.writeFeed();
  manager_.addFile("Karno.html", "<p>Second</p>");

  manager_.writeFeed();

  EXPECT_THAT(manager_.feed(), HasSubstr("<description><![CDATA[<p>Second</p>]]></description>"));
  EXPECT_THAT(manager_.feed(), Not(HasSubstr("First")));
}

TEST_F(KeptItem, IsSignedAnewWhenItsSignatureIsNone) {
  write(manager_.signatureOf("Karno.zip"), "none");

  EXPECT_EQ(manager_.writeFeed(), 1);
  EXPECT_EQ(manager_.writeFeed({"--replace", "1"}), 0) << manager_.err();
  EXPECT_THAT(manager_.feed(), HasSubstr(manager_.signatureOf("Karno.zip")));
}

TEST_F(KeptItem, GetsWhatItsVersionIsWished) {
  manager_.addRelease("Karno-2.zip", "2", "2.0");
  const std::vector<std::string> wishes{"--for",
                                        "1",
                                        "--critical",
                                        "--maximum-system",
                                        "12",
                                        "--channel",
                                        "beta & more",
                                        "--notes-link",
                                        "https://localhost/notes?a=1",
                                        "--phased-rollout-interval",
                                        "86400"};

  const int status = manager_.writeFeed(wishes);

  EXPECT_EQ(status, 0) << manager_.err();
  const std::string feed = manager_.feed();
  const std::string newer = feed.substr(0, feed.find("</item>"));
  const std::string older = feed.substr(newer.size());
  EXPECT_THAT(newer, Not(HasSubstr("criticalUpdate")));
  EXPECT_THAT(older, HasSubstr("<sparkle:maximumSystemVersion>12.0.0</sparkle:maximumSystemVersion>\n"
                               "      <sparkle:channel>beta &amp; more</sparkle:channel>\n"
                               "      <sparkle:releaseNotesLink>https://localhost/notes?a=1"
                               "</sparkle:releaseNotesLink>\n"
                               "      <sparkle:phasedRolloutInterval>86400</sparkle:phasedRolloutInterval>\n"
                               "      <sparkle:criticalUpdate />\n      <enclosure "));
}

TEST_F(KeptItem, IsLeftAloneByWishesThatMakeNoSense) {
  const std::string before = manager_.feed();

  EXPECT_EQ(manager_.writeFeed({"--phased-rollout-interval", "soon"}), 64);
  EXPECT_EQ(manager_.err(),
            "karno-appcast: --phased-rollout-interval needs a number of seconds, not 'soon'\n"
            "Try \"karno-appcast help feed\".\n");
  EXPECT_EQ(manager_.writeFeed({"--phased-rollout-interval", "0"}), 64);
  EXPECT_EQ(manager_.writeFeed({"--for", "1", "--channel", "\xff"}), 64);
  EXPECT_EQ(manager_.err(),
            "karno-appcast: the channel is no plain UTF-8 text\nTry \"karno-appcast help feed\".\n");
  EXPECT_EQ(manager_.writeFeed({"--for", "1", "--notes-link", "http://localhost/notes"}), 64);
  EXPECT_EQ(manager_.err(),
            "karno-appcast: 'http://localhost/notes' is no https:// address of a page\n"
            "Try \"karno-appcast help feed\".\n");
  EXPECT_EQ(manager_.writeFeed({"--for", "1", "--maximum-system", "Catalina"}), 64);
  EXPECT_EQ(manager_.feed(), before);
}

}  // namespace
}  // namespace karno::appcast::test
