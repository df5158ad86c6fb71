#include "util/utilities.h"

#include <gmock/gmock.h>

#include <cerrno>

#include "elements_are.h"
#include "fake_platform.h"
#include "printing.h"

namespace karno {
namespace {

using karno::test::ElementsAre;
using platform::UserFolder;
using platform::Value;
using test::FakePlatform;
using test::Line;
using ::testing::IsEmpty;
using ::testing::Pair;

TEST(PathForEmbeddedApp, LiesInTheHelpersOfTheLaunchersOwnBundle) {
  FakePlatform machine;

  EXPECT_EQ(Utilities::pathForEmbeddedAppWithName("Karno(Fuse).app"),
            "/Applications/Karno.app/Contents/Helpers/Karno(Fuse).app");
  EXPECT_THAT(machine.console(), IsEmpty());
}

TEST(BundleForEmbeddedApp, IsTheBundleThere) {
  FakePlatform machine;
  machine.withEmbeddedBuilds();

  const auto bundle = Utilities::bundleForEmbeddedKarnoAppWithName("Karno.app");

  ASSERT_NE(bundle, nullptr);
  EXPECT_EQ(bundle->bundlePath(), "/Applications/Karno.app/Contents/Helpers/Karno.app");
  EXPECT_EQ(bundle->bundleIdentifier(), "it.vantul.Karno");
  EXPECT_THAT(machine.console(), IsEmpty());
}

TEST(BundleForEmbeddedApp, IsMissingWithANameAndAPathInTheLog) {
  FakePlatform machine;

  const auto bundle = Utilities::bundleForEmbeddedKarnoAppWithName("Other.app");

  EXPECT_EQ(bundle, nullptr);
  EXPECT_THAT(machine.consoleMessages(),
              ElementsAre(Line("WARN",
                               "Utilities[BUNDLE] Could not find bundle for Other.app "
                               "(path:/Applications/Karno.app/Contents/Helpers/Other.app)")));
}

TEST(BundleForEmbeddedApp, CannotBeNamedByAPathThatIsNoURL) {
  FakePlatform machine;
  const std::string name("a\0b", 3);

  const auto bundle = Utilities::bundleForEmbeddedKarnoAppWithName(name);

  EXPECT_EQ(bundle, nullptr);
  EXPECT_THAT(machine.consoleMessages(),
              ElementsAre(Line("WARN", "Utilities[BUNDLE] Could not build url for " + name +
                                           " (path:/Applications/Karno.app/Contents/Helpers/" + name + ")")));
}

TEST(BundleForEmbeddedApp, CannotBeLookedForWithoutAPathOfTheLauncher) {
  FakePlatform machine;
  machine.bundles.main().setPath("");

  const auto bundle = Utilities::bundleForEmbeddedKarnoAppWithName("Karno.app");

  EXPECT_EQ(bundle, nullptr);
  EXPECT_THAT(machine.consoleMessages(),
              ElementsAre(Line("WARN", "Utilities[BUNDLE] Could not determine path for Karno.app")));
}

TEST(KarnoCacheDirectory, LiesInTheUsersCachesAndIsNotMade) {
  FakePlatform machine;

  EXPECT_EQ(Utilities::karnoCacheDirectory(), "/Users/tester/Library/Caches/Karno/cache.noindex");
  EXPECT_FALSE(machine.files.fileExists("/Users/tester/Library/Caches"));
}

TEST(KarnoCacheDirectory, TakesTheLastFolderOfTheList) {
  FakePlatform machine;
  machine.files.folders[UserFolder::Caches] = {"/first", "/last"};

  EXPECT_EQ(Utilities::karnoCacheDirectory(), "/last/Karno/cache.noindex");
}

TEST(ErrorWithPOSIXCode, HasTheMessageAsItsLocalisedDescription) {
  const Error error = Utilities::errorWithPOSIXCode(89, "User cancelled");

  EXPECT_EQ(error.domain(), "NSPOSIXErrorDomain");
  EXPECT_EQ(error.code(), 89);
  EXPECT_EQ(error.localizedDescription(), "User cancelled");
  ASSERT_TRUE(error.userInfo().has_value());
  EXPECT_THAT(*error.userInfo(), ElementsAre(Pair("NSLocalizedDescription", "User cancelled")));
}

TEST(ErrorWithPOSIXCode, HasNoUserInformationWithoutAMessage) {
  const Error error = Utilities::errorWithPOSIXCode(14, std::nullopt);

  EXPECT_EQ(error.code(), 14);
  EXPECT_FALSE(error.userInfo().has_value());
}

TEST(ErrorWithPOSIXCode, KeepsAnEmptyMessage) {
  const Error error = Utilities::errorWithPOSIXCode(22, "");

  ASSERT_TRUE(error.userInfo().has_value());
  EXPECT_THAT(*error.userInfo(), ElementsAre(Pair("NSLocalizedDescription", "")));
}

TEST(SystemDownloadDirectory, IsTheFirstFolderOfTheList) {
  FakePlatform machine;
  machine.files.folders[UserFolder::Downloads] = {"/first", "/last"};

  EXPECT_EQ(Utilities::systemDownloadDirectory(), "/first");
}

TEST(OpenFinderForPath, SelectsTheFileLaterOnTheMainThread) {
  FakePlatform machine;

  machine.onThread([] { Utilities::openFinderForPath("/Users/tester/Downloads/a.zip"); });
  machine.runUntilIdle();

  EXPECT_THAT(machine.workspace.selected,
              ElementsAre(Pair("/Users/tester/Downloads/a.zip", "/Users/tester/Downloads")));
}

TEST(OpenFinderForPath, ReturnsAtOnceOnTheMainThreadToo) {
  FakePlatform machine;

  Utilities::openFinderForPath("/a/b");

  EXPECT_THAT(machine.workspace.selected, IsEmpty());
}

TEST(OpenFinderForPath, DoesNothingWithoutAPath) {
  FakePlatform machine;

  Utilities::openFinderForPath(std::nullopt);
  machine.runUntilIdle();

  EXPECT_THAT(machine.workspace.selected, IsEmpty());
  EXPECT_THAT(machine.console(), IsEmpty());
}

// Of {"key": 1}.
constexpr const char* kArchive = R"(<plist version="1.0"><dict>
<key>$archiver</key><string>NSKeyedArchiver</string>
<key>$objects</key><array>
<string>$null</string>
<dict>
  <key>$class</key><dict><key>CF$UID</key><integer>4</integer></dict>
  <key>NS.keys</key><array><dict><key>CF$UID</key><integer>2</integer></dict></array>
  <key>NS.objects</key><array><dict><key>CF$UID</key><integer>3</integer></dict></array>
</dict>
<string>key</string>
<integer>1</integer>
<dict><key>$classname</key><string>NSDictionary</string></dict>
</array>
<key>$top</key><dict><key>root</key><dict><key>CF$UID</key><integer>1</integer></dict></dict>
</dict></plist>)";

TEST(ReadPropertyList, ReadsAKeyedArchiveOfADictionary) {
  FakePlatform machine;
  machine.files.addFile("/a/archive", kArchive);

  const auto dictionary = Utilities::readPropertyListAtPath("/a/archive");

  ASSERT_TRUE(dictionary.has_value());
  EXPECT_THAT(*dictionary, ElementsAre(Pair("key", Value(1))));
  EXPECT_THAT(machine.console(), IsEmpty());
}

TEST(ReadPropertyList, FailsWithALineWhenTheFileCannotBeRead) {
  FakePlatform machine;

  const auto dictionary = Utilities::readPropertyListAtPath("/a/missing");

  EXPECT_FALSE(dictionary.has_value());
  EXPECT_THAT(machine.consoleMessages(),
              ElementsAre(Line("WARN", "PropertyList[READ] Failed read file /a/missing")));
}

TEST(ReadPropertyList, FailsWithALineForAPlainPropertyList) {
  FakePlatform machine;
  machine.files.addFile("/a/Info.plist", "<plist><dict/></plist>");

  const auto dictionary = Utilities::readPropertyListAtPath("/a/Info.plist");

  EXPECT_FALSE(dictionary.has_value());
  EXPECT_THAT(
      machine.consoleMessages(),
      ElementsAre(Line("WARN",
                       "PropertyList[READ] Failed to unarchive dictionary from /a/Info.plist. Reason: "
                       "The keyed archive cannot be read: it is none.")));
}

TEST(PathForSymlink, IsWhatTheLinkHoldsNotResolvedFurther) {
  FakePlatform machine;
  machine.files.addSymbolicLink("/a/link", "../b/./target");

  EXPECT_EQ(Utilities::pathForSymlink("/a/link"), "../b/./target");
  EXPECT_THAT(machine.console(), IsEmpty());
}

TEST(PathForSymlink, FailsWithALineForAPlainFileAndForNone) {
  FakePlatform machine;
  machine.files.addFile("/a/file", "");

  const auto ofFile = Utilities::pathForSymlink("/a/file");
  const auto ofNothing = Utilities::pathForSymlink("/a/missing");

  EXPECT_EQ(ofFile, std::nullopt);
  EXPECT_EQ(ofNothing, std::nullopt);
  EXPECT_THAT(machine.consoleMessages(),
              ElementsAre(Line("WARN", "Utilities:: Failed to find link for '/a/file'"),
                          Line("WARN", "Utilities:: Failed to find link for '/a/missing'")));
}

}  // namespace
}  // namespace karno
