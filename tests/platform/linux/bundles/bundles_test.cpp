#include "platform/linux/bundles/bundles.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "../../support/information_lists.h"
#include "../../support/property_list_texts.h"
#include "../../support/scoped_environment.h"
#include "../../support/temporary_folder.h"

namespace karno::platform {
namespace {

using test::propertyList;
using test::ScopedEnvironment;
using test::stringEntry;
using test::TemporaryFolder;

class LinuxBundlesTest : public testing::Test {
 protected:
  std::shared_ptr<const Bundle> bundle(const std::string& name) const {
    return bundles.bundleAtPath(folder / name);
  }

  TemporaryFolder folder;
  const ScopedEnvironment home{"HOME", folder.path()};  // without preferences
  const ScopedEnvironment list{"LANGUAGE", std::nullopt};
  LinuxBundles bundles;
};

TEST_F(LinuxBundlesTest, FindsNoBundleWhereThereIsNoFolder) {
  folder.write("file.app", "");

  EXPECT_EQ(bundle("none.app"), nullptr);
  EXPECT_EQ(bundle("file.app"), nullptr);
  EXPECT_EQ(bundles.bundleAtPath(""), nullptr);
}

TEST_F(LinuxBundlesTest, KnowsNothingFromADamagedInfoPlist) {
  folder.write("Bad.app/Contents/MacOS/Bad", "");
  folder.write("Bad.app/Contents/Info.plist", "<plist><dict><key>CFBundleExecutable</key>");

  const auto made = bundle("Bad.app");

  ASSERT_NE(made, nullptr);
  EXPECT_EQ(made->executablePath(), std::nullopt);
  EXPECT_EQ(made->objectForInfoDictionaryKey("CFBundleExecutable"), std::nullopt);
}

class LinuxBundleOf : public LinuxBundlesTest, public testing::WithParamInterface<test::InformationList> {};

TEST_P(LinuxBundleOf, AnUnusualListHasWhatTheInstallerAndTheReleaseToolFind) {
  folder.write("A.app/Contents/Info.plist", GetParam().bytes);

  EXPECT_EQ(bundle("A.app")->bundleIdentifier(), GetParam().name);
  EXPECT_EQ(bundle("A.app")->objectForInfoDictionaryKey("CFBundleVersion"), Value(GetParam().version));
}

INSTANTIATE_TEST_SUITE_P(Each, LinuxBundleOf, testing::ValuesIn(test::informationLists()),
                         [](const auto& each) { return each.param.form; });

TEST_F(LinuxBundlesTest, IgnoresEntriesOfTheWrongType) {
  folder.write(
      "Odd.app/Contents/Info.plist",
      propertyList("<key>CFBundleExecutable</key><true/><key>CFBundleIdentifier</key><integer>3</integer>"));

  EXPECT_EQ(bundle("Odd.app")->executablePath(), std::nullopt);
  EXPECT_EQ(bundle("Odd.app")->bundleIdentifier(), std::nullopt);
}

TEST_F(LinuxBundlesTest, HasNoExecutableThatIsMissingOrAFolderOrOutside) {
  std::filesystem::create_directories(folder / "A.app/Contents/MacOS/Folder");
  const auto executableNamed = [&](const std::string& name) {
    folder.write("A.app/Contents/Info.plist", propertyList(stringEntry("CFBundleExecutable", name)));
    return bundle("A.app")->executablePath();
  };

  EXPECT_EQ(executableNamed("Missing"), std::nullopt);
  EXPECT_EQ(executableNamed("Folder"), std::nullopt);
  EXPECT_EQ(executableNamed("../Info.plist"), std::nullopt);
  EXPECT_EQ(executableNamed(""), std::nullopt);
}

TEST_F(LinuxBundlesTest, NamesAnExecutableWithoutExecutePermission) {
  folder.write("A.app/Contents/MacOS/plain", "");
  folder.write("A.app/Contents/Info.plist", propertyList(stringEntry("CFBundleExecutable", "plain")));

  EXPECT_EQ(bundle("A.app")->executablePath(), folder / "A.app/Contents/MacOS/plain");
}

TEST_F(LinuxBundlesTest, PrefersTheResourceThatBelongsToNoLanguage) {
  folder.write("A.app/Contents/Resources/Text.strings", "");
  folder.write("A.app/Contents/Resources/de.lproj/Text.strings", "");
  const ScopedEnvironment language("LC_ALL", "de_AT.UTF-8");

  EXPECT_EQ(bundle("A.app")->pathForResource("Text", "strings", ""),
            folder / "A.app/Contents/Resources/Text.strings");
}

TEST_F(LinuxBundlesTest, FindsTheResourceOfTheUsersLanguageThenBaseThenEnglish) {
  const std::string resources = folder / "A.app/Contents/Resources/";
  folder.write("A.app/Contents/Resources/de.lproj/Text.strings", "");
  folder.write("A.app/Contents/Resources/Base.lproj/Text.strings", "");
  folder.write("A.app/Contents/Resources/en.lproj/Text.strings", "");
  const ScopedEnvironment language("LC_ALL", "de_AT.UTF-8");

  EXPECT_EQ(bundle("A.app")->pathForResource("Text", "strings", ""), resources + "de.lproj/Text.strings");
  std::filesystem::remove(resources + "de.lproj/Text.strings");
  EXPECT_EQ(bundle("A.app")->pathForResource("Text", "strings", ""), resources + "Base.lproj/Text.strings");
  std::filesystem::remove(resources + "Base.lproj/Text.strings");
  EXPECT_EQ(bundle("A.app")->pathForResource("Text", "strings", ""), resources + "en.lproj/Text.strings");
  std::filesystem::remove(resources + "en.lproj/Text.strings");
  EXPECT_EQ(bundle("A.app")->pathForResource("Text", "strings", ""), std::nullopt);
}

TEST_F(LinuxBundlesTest, FollowsTheLanguagesOfTheUsersPreferences) {
  folder.write("A.app/Contents/Resources/zh-Hant.lproj/Text.strings", "");
  folder.write("A.app/Contents/Resources/Base.lproj/Text.strings", "");
  folder.write("Library/Preferences/.GlobalPreferences.plist",
               propertyList("<key>AppleLanguages</key><array><string>zh-HK</string></array>"));

  EXPECT_EQ(bundle("A.app")->pathForResource("Text", "strings", ""),
            folder / "A.app/Contents/Resources/zh-Hant.lproj/Text.strings");
}

TEST_F(LinuxBundlesTest, TakesTheNextFolderWhenTheBestHasNoSuchResource) {
  folder.write("A.app/Contents/Resources/de-AT.lproj/Other.strings", "");
  folder.write("A.app/Contents/Resources/de.lproj/Text.strings", "");
  const ScopedEnvironment language("LC_ALL", "de_AT.UTF-8");

  EXPECT_EQ(bundle("A.app")->pathForResource("Text", "strings", ""),
            folder / "A.app/Contents/Resources/de.lproj/Text.strings");
}

TEST_F(LinuxBundlesTest, AreNotLedOutOfTheirResourcesByALanguage) {
  folder.write("A.app/Contents/outside.lproj/Text.strings", "");
  std::filesystem::create_directories(folder / "A.app/Contents/Resources/x");
  const ScopedEnvironment language("LC_ALL", "../outside");

  EXPECT_EQ(bundle("A.app")->pathForResource("Text", "strings", ""), std::nullopt);
}

TEST_F(LinuxBundlesTest, PassOverAFileThatIsNamedLikeALanguageFolder) {
  folder.write("A.app/Contents/Resources/de.lproj", "");
  folder.write("A.app/Contents/Resources/Base.lproj/Text.strings", "");
  const ScopedEnvironment language("LC_ALL", "de_AT.UTF-8");

  EXPECT_EQ(bundle("A.app")->pathForResource("Text", "strings", ""),
            folder / "A.app/Contents/Resources/Base.lproj/Text.strings");
}

TEST_F(LinuxBundlesTest, LooksInADirectoryExactly) {
  folder.write("A.app/Contents/Resources/de.lproj/Text.strings", "");
  folder.write("A.app/Contents/Resources/Base.lproj/Text", "");

  EXPECT_EQ(bundle("A.app")->pathForResource("Text", "strings", "de.lproj"),
            folder / "A.app/Contents/Resources/de.lproj/Text.strings");
  EXPECT_EQ(bundle("A.app")->pathForResource("Text", "strings", "Base.lproj"), std::nullopt);
  EXPECT_EQ(bundle("A.app")->pathForResource("Text", "", "Base.lproj"),
            folder / "A.app/Contents/Resources/Base.lproj/Text");
}

TEST_F(LinuxBundlesTest, TakesTheProgramsFolderForTheMainBundleOfAToolOutsideAnyBundle) {
  const std::filesystem::path program = std::filesystem::read_symlink("/proc/self/exe");

  EXPECT_EQ(bundles.mainBundle().bundlePath(), program.parent_path());
  EXPECT_EQ(bundles.mainBundle().bundleIdentifier(), std::nullopt);
}

TEST_F(LinuxBundlesTest, LooksTextsUpInTheUsersLanguage) {
  const ScopedEnvironment language("LANGUAGE", "de");
  const ScopedEnvironment locale("LC_ALL", "de_DE.UTF-8");
  folder.write(
      "A.app/Contents/Resources/de.lproj/Texts.strings",
      propertyList(stringEntry("Do Not Move", "Nicht bewegen") + "<key>Number</key><integer>4</integer>"));
  folder.write("A.app/Contents/Resources/Base.lproj/Texts.strings",
               propertyList(stringEntry("Move", "Move it") + stringEntry("Do Not Move", "Leave it")));

  const auto made = bundle("A.app");

  EXPECT_EQ(made->localisedString("Do Not Move", "Texts"), "Nicht bewegen");
  EXPECT_EQ(made->localisedString("Move", "Texts"), "Move");
  EXPECT_EQ(made->localisedString("Number", "Texts"), "Number");
}

TEST_F(LinuxBundlesTest, AnswersTheKeyWhereThereIsNoTable) {
  folder.write("A.app/Contents/Resources/Base.lproj/Damaged.strings", "<plist");

  const auto made = bundle("A.app");

  EXPECT_EQ(made->localisedString("Do Not Move", "Texts"), "Do Not Move");
  EXPECT_EQ(made->localisedString("Do Not Move", "Damaged"), "Do Not Move");
}

}  // namespace
}  // namespace karno::platform
