#include "platform/bundles.h"

#include "world.h"

namespace karno::test {
namespace {

using platform::Value;

class BundlesContract : public Contract {
 protected:
  std::shared_ptr<const platform::Bundle> bundleAt(const std::string& name) const {
    return services_.bundles.bundleAtPath(here_ / name);
  }
};

TEST_P(BundlesContract, TellsWhatInfoPlistHolds) {
  here_.makeBundle("A.app", {.info = {{"CFBundleIdentifier", "it.vantul.A"}, {"Number", 7}}});
  here_.makeBundle("B.app", {.info = {{"CFBundleIdentifier", 7}}});

  EXPECT_EQ(bundleAt("A.app")->bundleIdentifier(), "it.vantul.A");
  EXPECT_EQ(bundleAt("A.app")->objectForInfoDictionaryKey("Number"), Value(7));
  EXPECT_EQ(bundleAt("A.app")->objectForInfoDictionaryKey("none"), std::nullopt);
  EXPECT_EQ(bundleAt("B.app")->bundleIdentifier(), std::nullopt);
}

TEST_P(BundlesContract, NamesItsFolderAndItsExecutable) {
  const std::string path = here_.makeBundle("A.app", {.executable = "Run(A)"});

  for (const char* name : {"A.app", "A.app/", "A.app//"}) {
    EXPECT_EQ(bundleAt(name)->bundlePath(), path) << name;
    EXPECT_EQ(bundleAt(name)->executablePath(), path + "/Contents/MacOS/Run(A)") << name;
    EXPECT_EQ(bundleAt(name)->executableURL(), "file://" + path + "/Contents/MacOS/Run(A)") << name;
  }
}

TEST_P(BundlesContract, EncodesUnusualNamesInURLs) {
  here_.makeBundle("K\u00E4r #1%.app", {.executable = "a b & c?"});

  const auto bundle = bundleAt("K\u00E4r #1%.app");

  EXPECT_EQ(bundle->executableURL(),
            "file://" + here_ / "K%C3%A4r%20%231%25.app/Contents/MacOS/a%20b%20&%20c%3F");
}

TEST_P(BundlesContract, TakesAnyFolderForABundle) {
  here_.write("folder/file", "");

  const auto bundle = bundleAt("folder");

  ASSERT_NE(bundle, nullptr);
  EXPECT_EQ(bundle->bundlePath(), here_ / "folder");
  EXPECT_EQ(bundle->bundleIdentifier(), std::nullopt);
  EXPECT_EQ(bundle->executablePath(), std::nullopt);
  EXPECT_EQ(bundle->executableURL(), std::nullopt);
  EXPECT_EQ(bundle->pathForResource("Strings", "json", ""), std::nullopt);
  EXPECT_EQ(bundle->localisedString("key", "MoveApplication"), "key");
}

TEST_P(BundlesContract, FindsNoBundleWhereThereIsNoFolder) {
  here_.write("file", "");
  here_.link("broken", "nowhere");

  for (const char* name : {"none", "file", "broken"}) EXPECT_EQ(bundleAt(name), nullptr) << name;
}

TEST_P(BundlesContract, FindsResources) {
  const std::string path =
      here_.makeBundle("A.app", {.resources = {"Strings.json", "Base.lproj/Other.json", "icon"}});
  const std::string resources = path + "/Contents/Resources/";

  const auto bundle = bundleAt("A.app");

  EXPECT_EQ(bundle->pathForResource("Strings", "json", ""), resources + "Strings.json");
  EXPECT_EQ(bundle->pathForResource("Other", "json", "Base.lproj"), resources + "Base.lproj/Other.json");
  EXPECT_EQ(bundle->pathForResource("icon", "", ""), resources + "icon");
  EXPECT_EQ(bundle->pathForResource("Strings", "json", "Base.lproj"), std::nullopt);
  EXPECT_EQ(bundle->pathForResource("Strings", "", ""), std::nullopt);
  EXPECT_EQ(bundle->pathForResource("none", "json", ""), std::nullopt);
}

TEST_P(BundlesContract, LooksTextsUp) {
  here_.makeBundle("A.app", {.texts = {{"Do Not Move", "Nicht bewegen"}}});

  const auto bundle = bundleAt("A.app");

  EXPECT_EQ(bundle->localisedString("Do Not Move", "MoveApplication"), "Nicht bewegen");
  EXPECT_EQ(bundle->localisedString("Move", "MoveApplication"), "Move");
  EXPECT_EQ(bundle->localisedString("Do Not Move", "Other"), "Do Not Move");
}

INSTANTIATE_TEST_SUITE_P(Fake, BundlesContract, testing::Values(makeFakeWorld));
INSTANTIATE_TEST_SUITE_P(Native, BundlesContract, testing::Values(makeNativeWorld));

}  // namespace
}  // namespace karno::test
