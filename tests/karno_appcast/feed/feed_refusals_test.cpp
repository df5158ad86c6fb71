#include <gmock/gmock.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/stat.h>

#include <filesystem>
#include <iterator>

#include "forked_process.h"
#include "release_manager.h"

namespace karno::appcast::test {
namespace {

using karno::test::contentOf;
using karno::test::ForkedProcess;
using ::testing::StartsWith;

// Whatever is wrong, the feed that was there stays as it was.
class FeedRefusals : public testing::Test {
 protected:
  FeedRefusals() { manager_.addFile("appcast.eddsa.xml", kFeed); }

  // What the command says after its name; empty when it succeeds or touches the feed.
  std::string refusal(const std::vector<std::string>& options = {}) {
    const int status = manager_.writeFeed(options);
    if (status != 1 || !manager_.out().empty() || manager_.feed() != kFeed) return "";
    return manager_.err();
  }

  // Likewise for a command line that is wrong, without the hint where to read on.
  std::string wrongUsage(const std::vector<std::string>& options) {
    const int status = manager_.writeFeed(options);
    if (status != 64 || !manager_.out().empty() || manager_.feed() != kFeed) return "";
    return manager_.err().substr(0, manager_.err().find('\n') + 1);
  }

  static constexpr const char* kFeed = "<rss version=\"2.0\"><channel /></rss>";

  ReleaseManager manager_;
};

TEST_F(FeedRefusals, AFolderWithoutAnArchive) {
  manager_.addFile("notes.txt", "nothing");

  EXPECT_EQ(refusal(), "karno-appcast: there is no archive of a release in " + manager_.folder() + "\n");
}

TEST_F(FeedRefusals, AFolderThatIsNotThere) {
  std::filesystem::remove_all(manager_.folder());

  EXPECT_EQ(manager_.writeFeed(), 1);
  EXPECT_EQ(manager_.err(),
            "karno-appcast: cannot read " + manager_.folder() + ": No such file or directory\n");
}

TEST_F(FeedRefusals, AnArchiveWithoutABundleAtItsTop) {
  manager_.addArchive("a.zip", bundle(infoPlist("1", "1.0"), "Release/Karno"));

  EXPECT_EQ(refusal(),
            "karno-appcast: a.zip: no launcher would install it: The archive does not hold exactly one "
            "application bundle.\n");
}

TEST_F(FeedRefusals, AFileThatIsNoArchive) {
  manager_.addFile("a.zip", "this is no archive");

  EXPECT_EQ(refusal(),
            "karno-appcast: a.zip: no launcher would install it: The archive could not be unpacked: "
            "Unrecognized archive format.\n");
}

class CutOffArchive : public FeedRefusals, public testing::WithParamInterface<const char*> {};

// It would be signed and offered, and no launcher could unpack it.
TEST_P(CutOffArchive, IsNotOfferedThoughItsPropertyListCanBeRead) {
  manager_.addArchive(GetParam(), joined(bundle(infoPlist("1", "1.0")),
                                         {{"Karno.app/Contents/Resources/data", noise(300'000)}}));
  manager_.cutOff(GetParam(), 150'000);

  EXPECT_THAT(refusal(), StartsWith(std::string("karno-appcast: ") + GetParam() +
                                    ": no launcher would install it: The archive could not be unpacked: "));
}

INSTANTIATE_TEST_SUITE_P(Kinds, CutOffArchive,
                         testing::Values("a.zip", "a.tar", "a.tar.gz", "a.tar.xz", "a.tar.bz2", "a.tar.zst"));

// The list of contents is the last thing in it.
TEST_F(FeedRefusals, AZipWithoutTheEndOfItsListOfContents) {
  manager_.addRelease("a.zip", "1", "1.0");
  manager_.cutOff("a.zip", std::filesystem::file_size(manager_.inFolder("a.zip")) - 10);

  EXPECT_THAT(
      refusal(),
      StartsWith("karno-appcast: a.zip: no launcher would install it: The archive could not be unpacked: "));
}

TEST_F(FeedRefusals, AnArchiveThatEndsInItsPropertyList) {
  manager_.addArchive("a.tar", bundle(infoPlist("1", noise(5000))));
  manager_.cutOff("a.tar", 2000);

  EXPECT_THAT(
      refusal(),
      StartsWith("karno-appcast: a.tar: no launcher would install it: The archive could not be unpacked: "));
}

// Launchers want exactly one.
TEST_F(FeedRefusals, TwoBundlesAtTheTop) {
  manager_.addArchive("a.zip", joined(bundle(infoPlist("1", "1.0")), bundle(infoPlist("1", "1.0"), "Other")));

  EXPECT_EQ(refusal(),
            "karno-appcast: a.zip: no launcher would install it: The archive does not hold exactly one "
            "application bundle.\n");
}

TEST_F(FeedRefusals, ABundleWithoutAName) {
  manager_.addArchive("a.zip", bundle(infoPlist("1", "1.0"), ""));

  EXPECT_EQ(refusal(),
            "karno-appcast: a.zip: no launcher would install it: The archive does not hold exactly one "
            "application bundle.\n");
}

TEST_F(FeedRefusals, ABundleWhoseVersionIsNoString) {
  manager_.addArchive("a.tar", bundle(infoPlistWith("<key>CFBundleVersion</key><integer>7</integer>")));

  EXPECT_EQ(refusal(), "karno-appcast: a.tar: no launcher would install it: The bundle has no version.\n");
}

TEST_F(FeedRefusals, AFolderWithMoreThanAThousandArchives) {
  for (int number = 0; number <= 1000; ++number) manager_.addFile(std::to_string(number) + ".zip", "");

  EXPECT_EQ(refusal(), "karno-appcast: " + manager_.folder() + " holds more than 1000 archives\n");
}

TEST_F(FeedRefusals, NotesOfMoreThanAMebibyte) {
  manager_.addRelease("a.zip", "1", "1.0");
  manager_.addFile("a.txt", std::string((std::size_t{1} << 20U) + 1, 'x'));

  EXPECT_EQ(refusal(), "karno-appcast: " + manager_.inFolder("a.txt") + " is larger than 1 MiB\n");
}

TEST_F(FeedRefusals, AnApplicationWhoseNameNoFeedCanCarry) {
  manager_.addArchive("a.tar", bundle(infoPlist("7", "7"), "K\xff"));

  EXPECT_EQ(refusal(),
            "karno-appcast: a.tar: no launcher would install it: The archive holds the name "
            "\"K?.app/Contents/Info.plist\", which is not UTF-8.\n");
}

TEST_F(FeedRefusals, ABundleWithABrokenPropertyList) {
  manager_.addArchive("a.tar", bundle("<plist><dict>"));

  EXPECT_EQ(refusal(),
            "karno-appcast: a.tar: no launcher would install it: The bundle's Info.plist is not a property "
            "list with a dictionary.\n");
}

TEST_F(FeedRefusals, ABundleWithAPropertyListOfAnotherKind) {
  manager_.addArchive("a.tar", bundle("<plist><array/></plist>"));

  EXPECT_EQ(refusal(),
            "karno-appcast: a.tar: no launcher would install it: The bundle's Info.plist is not a property "
            "list with a dictionary.\n");
}

TEST_F(FeedRefusals, ABundleWithoutAVersion) {
  manager_.addArchive("a.tar", bundle(infoPlist("", "1.0")));

  EXPECT_EQ(refusal(), "karno-appcast: a.tar: no launcher would install it: The bundle has no version.\n");
}

TEST_F(FeedRefusals, ABundleWithATextThatNoFeedCanCarry) {
  manager_.addArchive("a.tar", bundle(infoPlist("1", "1.0 &#7;")));

  EXPECT_EQ(refusal(),
            "karno-appcast: a.tar: the CFBundleShortVersionString of its Info.plist is no plain text\n");
}

TEST_F(FeedRefusals, ATitleThatNoFeedCanCarry) {
  manager_.addRelease("a.zip", "1", "1.0");

  EXPECT_EQ(wrongUsage({"--title", "\xff"}), "karno-appcast: the title is no plain UTF-8 text\n");
}

TEST_F(FeedRefusals, ALowestSystemThatIsNoVersion) {
  manager_.addRelease("a.zip", "1", "1.0");

  EXPECT_EQ(wrongUsage({"--minimum-system", "11.0.0.1"}),
            "karno-appcast: '11.0.0.1' is no version of a system\n");
  EXPECT_EQ(wrongUsage({"--minimum-system", "11."}), "karno-appcast: '11.' is no version of a system\n");
  EXPECT_EQ(wrongUsage({"--minimum-system", "1234567"}),
            "karno-appcast: '1234567' is no version of a system\n");
}

TEST_F(FeedRefusals, ABundleWhoseSystemIsNoVersion) {
  manager_.addArchive("a.tar", bundle(infoPlist("1", "1.0", "ten")));

  EXPECT_EQ(refusal(), "karno-appcast: a.tar: 'ten' is no version of a system\n");
}

TEST_F(FeedRefusals, ABundleWithAnEnormousPropertyList) {
  manager_.addArchive("a.tar.gz", bundle(infoPlist("1", "1.0") + std::string(std::size_t{1} << 20U, ' ')));

  EXPECT_EQ(refusal(), "karno-appcast: a.tar.gz: its Info.plist is larger than 1 MiB\n");
}

TEST_F(FeedRefusals, TwoArchivesOfTheSameVersion) {
  manager_.addRelease("a.tar.xz", "2.0", "2.0");
  manager_.addRelease("b.zip", "2", "2.0");

  EXPECT_EQ(refusal(), "karno-appcast: a.tar.xz and b.zip hold the same version 2\n");
}

TEST_F(FeedRefusals, NotesInTwoForms) {
  manager_.addRelease("a.zip", "1", "1.0");
  manager_.addFile("a.txt", "plain");
  manager_.addFile("a.html", "<p>other</p>");

  EXPECT_EQ(refusal(), "karno-appcast: there are notes both in " + manager_.inFolder("a.txt") + " and in " +
                           manager_.inFolder("a.html") + "\n");
}

TEST_F(FeedRefusals, NotesThatAreNoText) {
  manager_.addRelease("a.zip", "1", "1.0");
  manager_.addFile("a.txt", "\xff");
  EXPECT_EQ(refusal(), "karno-appcast: " + manager_.inFolder("a.txt") + " is no plain UTF-8 text\n");

  manager_.addFile("a.txt", "a bell \a");
  EXPECT_EQ(refusal(), "karno-appcast: " + manager_.inFolder("a.txt") + " is no plain UTF-8 text\n");
}

TEST_F(FeedRefusals, AnExistingFeedThatIsDamaged) {
  manager_.addRelease("a.zip", "1", "1.0");
  manager_.addFile("damaged.xml", "<rss><channel>");

  EXPECT_EQ(refusal({"--output", manager_.inFolder("damaged.xml")}),
            "karno-appcast: the existing feed cannot be read: Start-end tags mismatch\n");
  EXPECT_EQ(contentOf(manager_.inFolder("damaged.xml")), "<rss><channel>");
}

TEST_F(FeedRefusals, AnExistingFileThatIsNoFeed) {
  manager_.addRelease("a.zip", "1", "1.0");
  manager_.addFile("page.xml", "<html/>");

  EXPECT_EQ(refusal({"--output", manager_.inFolder("page.xml")}),
            "karno-appcast: the existing feed is no list of releases\n");
}

TEST_F(FeedRefusals, AnExistingFeedThatHasThePrefixForOtherNames) {
  manager_.addRelease("a.zip", "1", "1.0");
  manager_.addFile("odd.xml", "<rss xmlns:sparkle=\"https://localhost/other\"><channel/></rss>");

  EXPECT_EQ(refusal({"--output", manager_.inFolder("odd.xml")}),
            "karno-appcast: the existing feed uses the prefix sparkle for other names\n");
}

TEST_F(FeedRefusals, AnExistingFeedOfAHundredMegabytes) {
  manager_.addRelease("a.zip", "1", "1.0");
  manager_.addFile("huge.xml", "");
  std::filesystem::resize_file(manager_.inFolder("huge.xml"), 100 << 20);

  EXPECT_EQ(refusal({"--output", manager_.inFolder("huge.xml")}),
            "karno-appcast: cannot read " + manager_.inFolder("huge.xml") + ": File too large\n");
}

// The old feed stays whole and nothing new lies beside it. The limit is in the place of a full disk, and lets
// the small files of the bundle pass that are unpacked before.
TEST_F(FeedRefusals, AFeedForWhichThereIsNoRoom) {
  manager_.addRelease("a.zip", "1", "1.0");
  manager_.addFile("a.txt", std::string(100'000, 'x'));
  ForkedProcess process([&] {
    ::signal(SIGXFSZ, SIG_IGN);
    const rlimit little = {.rlim_cur = 50'000, .rlim_max = 50'000};
    ::setrlimit(RLIMIT_FSIZE, &little);
    const std::string reason =
        "karno-appcast: cannot write " + manager_.inFolder("appcast.eddsa.xml") + ": File too large\n";
    return refusal() == reason ? 0 : 1;
  });

  EXPECT_EQ(process.exitStatus(), 0);
  const auto files = std::filesystem::directory_iterator(manager_.folder());
  EXPECT_EQ(std::distance(begin(files), end(files)), 3);
}

// An archive that is larger unpacked than the room for it.
TEST_F(FeedRefusals, AnArchiveThatCannotBeUnpackedHere) {
  manager_.addArchive("a.tar.gz", joined(bundle(infoPlist("1", "1.0")),
                                         {{"Karno.app/Contents/large", std::string(200'000, 'x')}}));
  ForkedProcess process([&] {
    ::signal(SIGXFSZ, SIG_IGN);
    const rlimit little = {.rlim_cur = 50'000, .rlim_max = 50'000};
    ::setrlimit(RLIMIT_FSIZE, &little);
    const std::string reason =
        "karno-appcast: a.tar.gz: it cannot be looked into: The archive could not be unpacked: File too "
        "large.\n";
    return refusal() == reason ? 0 : 1;
  });

  EXPECT_EQ(process.exitStatus(), 0);
}

TEST_F(FeedRefusals, AnOutputThatCannotBeWritten) {
  manager_.addRelease("a.zip", "1", "1.0");
  const std::string output = manager_.desk() / "nowhere/feed.xml";

  EXPECT_EQ(refusal({"--output", output}),
            "karno-appcast: cannot write " + output + ": No such file or directory\n");
}

TEST_F(FeedRefusals, AnOutputThatIsAFolder) {
  manager_.addRelease("a.zip", "1", "1.0");
  const std::string output = manager_.desk() / "folder";
  std::filesystem::create_directory(output);

  EXPECT_EQ(refusal({"--output", output}), "karno-appcast: cannot read " + output + ": Is a directory\n");
}

TEST_F(FeedRefusals, APrivateKeyThatIsNotThere) {
  manager_.addRelease("a.zip", "1", "1.0");
  std::filesystem::remove(manager_.keyFile());

  EXPECT_EQ(refusal(), "karno-appcast: cannot read " + manager_.keyFile() + ": No such file or directory\n");
}

TEST(FeedPrefix, MustBeSecureUnlessSaidOtherwise) {
  ReleaseManager manager;
  manager.addRelease("a.zip", "1", "1.0");
  std::vector<std::string> command{"feed",         manager.folder(),  "--private", manager.keyFile(),
                                   "--url-prefix", "http://localhost"};

  EXPECT_EQ(manager.run(command), 64);
  EXPECT_EQ(manager.err(),
            "karno-appcast: the URL prefix must begin with https:// (or say --allow-http)\n"
            "Try \"karno-appcast help feed\".\n");
  command.push_back("--allow-http");
  EXPECT_EQ(manager.run(command), 0);
  EXPECT_NE(manager.feed().find("url=\"http://localhost/a.zip\""), std::string::npos);
}

TEST(FeedPrefix, MustBeAURLWithAHost) {
  ReleaseManager manager;
  manager.addRelease("a.zip", "1", "1.0");
  const auto errorFor = [&manager](const std::string& prefix) {
    manager.run({"feed", manager.folder(), "--private", manager.keyFile(), "--url-prefix", prefix});
    return manager.err().substr(0, manager.err().find('\n') + 1);
  };

  EXPECT_EQ(errorFor("localhost/updates"), "karno-appcast: the URL prefix must begin with https://\n");
  EXPECT_EQ(errorFor("https://"), "karno-appcast: 'https://' is no prefix of a URL\n");
  EXPECT_EQ(errorFor("https:///updates"), "karno-appcast: 'https:///updates' is no prefix of a URL\n");
  EXPECT_EQ(errorFor("https://a b"), "karno-appcast: 'https://a b' is no prefix of a URL\n");
  EXPECT_EQ(errorFor("https://host/?x="), "karno-appcast: 'https://host/?x=' is no prefix of a URL\n");
  EXPECT_EQ(errorFor("https://host/#x"), "karno-appcast: 'https://host/#x' is no prefix of a URL\n");
  EXPECT_EQ(errorFor("https://host/\"x"), "karno-appcast: 'https://host/\"x' is no prefix of a URL\n");
  EXPECT_EQ(errorFor("https://host/<x"), "karno-appcast: 'https://host/<x' is no prefix of a URL\n");
}

}  // namespace
}  // namespace karno::appcast::test
