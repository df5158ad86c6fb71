#include <gmock/gmock.h>

#include <cstddef>
#include <string>

#include "release_manager.h"
#include "scoped_environment.h"

namespace karno::appcast::test {
namespace {

using ::testing::HasSubstr;

TEST(Feed, TakesALowestSystemOfUpToSixDigitsInAPart) {
  ReleaseManager manager;
  manager.addRelease("Karno.zip", "1", "1.0");

  manager.writeFeed({"--minimum-system", "123456"});

  EXPECT_THAT(manager.feed(), HasSubstr("<sparkle:minimumSystemVersion>123456.0.0<"));
}

TEST(Feed, LeavesTheLettersOfAnAddressThatNeedNoEscape) {
  ReleaseManager manager;
  manager.addRelease("Karno-1.0_a~b.zip", "1", "1.0");

  manager.writeFeed();

  EXPECT_THAT(manager.feed(), HasSubstr("url=\"https://localhost/updates/Karno-1.0_a~b.zip\""));
}

TEST(Feed, TellsTheTimeOfGreenwichEverywhere) {
  const karno::test::ScopedEnvironment zone("TZ", "JST-9");
  ReleaseManager manager;
  manager.addRelease("Karno.zip", "1", "1.0");

  manager.writeFeed();

  EXPECT_THAT(manager.feed(), HasSubstr("<pubDate>Tue, 14 Nov 2023 22:13:20 +0000</pubDate>"));
}

TEST(Feed, TakesNotesUpToAMebibyteWithTabsAndEndsOfLinesOfEverySystem) {
  ReleaseManager manager;
  manager.addRelease("Karno.zip", "1", "1.0");
  const std::string notes = "a\tb\r\nc\n";
  manager.addFile("Karno.txt", notes + std::string((std::size_t{1} << 20U) - notes.size(), 'x'));

  const int status = manager.writeFeed();

  EXPECT_EQ(status, 0) << manager.err();
  EXPECT_THAT(manager.feed(), HasSubstr("<![CDATA[a\tb\r\nc\nxxx"));
}

TEST(Feed, TakesAPropertyListUpToAMebibyte) {
  ReleaseManager manager;
  const std::string list = infoPlist("1", "1.0");
  manager.addArchive("Karno.tar.gz", bundle(list + std::string((std::size_t{1} << 20U) - list.size(), ' ')));

  EXPECT_EQ(manager.writeFeed(), 0) << manager.err();
}

TEST(Feed, FindsABundleInAnArchiveOfTheFolderThatItLiesIn) {
  ReleaseManager manager;
  manager.addArchive("Karno.tar.gz", bundle(infoPlist("1", "1.0"), "./Karno"));

  EXPECT_EQ(manager.writeFeed(), 0) << manager.err();
}

}  // namespace
}  // namespace karno::appcast::test
