#include "platform/linux/bundles/language_folders.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "elements_are.h"

namespace karno::platform {
namespace {

using karno::test::ElementsAre;
using ::testing::IsEmpty;

using Names = std::vector<std::string>;

// The folders that the launcher's bundle has.
const Names kShipped = {"Base.lproj", "de.lproj",    "es.lproj",      "fr.lproj",
                        "it.lproj",   "ja.lproj",    "ko.lproj",      "nl.lproj",
                        "other",      "pt-BR.lproj", "zh-Hans.lproj", "zh-Hant.lproj"};

std::string best(const Names& available, const Names& languages) {
  return languageFolders(available, languages).front();
}

TEST(LanguageFolders, EndWithTheBase) {
  EXPECT_THAT(languageFolders(kShipped, {"de"}), ElementsAre("de.lproj", "Base.lproj"));
  EXPECT_THAT(languageFolders(kShipped, {"ja", "fr"}), ElementsAre("ja.lproj", "fr.lproj", "Base.lproj"));
  EXPECT_THAT(languageFolders(kShipped, {}), ElementsAre("Base.lproj"));
  EXPECT_THAT(languageFolders({"en.lproj", "de.lproj", "Base.lproj"}, {}),
              ElementsAre("Base.lproj", "en.lproj"));
}

TEST(LanguageFolders, AreOnlyThoseThatTheBundleHas) {
  EXPECT_THAT(languageFolders({}, {"de", "en"}), IsEmpty());
  EXPECT_THAT(languageFolders({"fr.lproj"}, {"de", "en"}), IsEmpty());
}

TEST(LanguageFolders, TakeTheBaseForEnglish) {
  EXPECT_EQ(best(kShipped, {"en", "de"}), "Base.lproj");
  EXPECT_EQ(best(kShipped, {"en-GB", "de"}), "Base.lproj");
  EXPECT_EQ(best(kShipped, {"en-US", "fr"}), "Base.lproj");
  EXPECT_THAT(languageFolders({"Base.lproj", "en.lproj", "de.lproj"}, {"en-GB", "de"}),
              ElementsAre("en.lproj", "Base.lproj", "de.lproj"));
  EXPECT_THAT(languageFolders({"Base.lproj", "en-GB.lproj"}, {"en-GB"}),
              ElementsAre("en-GB.lproj", "Base.lproj"));
}

TEST(LanguageFolders, FallBackFromARegionToTheLanguage) {
  EXPECT_EQ(best(kShipped, {"de-AT", "fr"}), "de.lproj");
  EXPECT_EQ(best(kShipped, {"de-Latn-CH"}), "de.lproj");
  EXPECT_EQ(best(kShipped, {"fr-CA"}), "fr.lproj");
  EXPECT_EQ(best(kShipped, {"es-419"}), "es.lproj");
  EXPECT_EQ(best(kShipped, {"nl-BE"}), "nl.lproj");
}

TEST(LanguageFolders, PreferTheSameRegionThenTheLanguageThenAnotherRegion) {
  EXPECT_THAT(languageFolders({"pt-BR.lproj", "pt.lproj", "pt-PT.lproj"}, {"pt-PT"}),
              ElementsAre("pt-PT.lproj", "pt.lproj", "pt-BR.lproj"));
  EXPECT_THAT(languageFolders({"pt-BR.lproj", "pt.lproj"}, {"pt-BR"}),
              ElementsAre("pt-BR.lproj", "pt.lproj"));
  EXPECT_EQ(best(kShipped, {"pt-PT", "fr"}), "pt-BR.lproj");
  EXPECT_EQ(best(kShipped, {"pt", "fr"}), "pt-BR.lproj");
  EXPECT_EQ(best({"en.lproj", "en-GB.lproj"}, {"en-AU"}), "en-GB.lproj");
  EXPECT_EQ(best({"es.lproj", "es-419.lproj"}, {"es-MX"}), "es-419.lproj");
}

TEST(LanguageFolders, KnowTheScriptOfARegion) {
  EXPECT_EQ(best(kShipped, {"zh-HK"}), "zh-Hant.lproj");
  EXPECT_EQ(best(kShipped, {"zh-TW"}), "zh-Hant.lproj");
  EXPECT_EQ(best(kShipped, {"zh-MO"}), "zh-Hant.lproj");
  EXPECT_EQ(best(kShipped, {"zh-Hant-HK"}), "zh-Hant.lproj");
  EXPECT_EQ(best(kShipped, {"zh-CN"}), "zh-Hans.lproj");
  EXPECT_EQ(best(kShipped, {"zh-SG"}), "zh-Hans.lproj");
  EXPECT_EQ(best(kShipped, {"zh"}), "zh-Hans.lproj");
  EXPECT_EQ(best(kShipped, {"zh-Hans-HK"}), "zh-Hans.lproj");
}

TEST(LanguageFolders, ShowNoOtherScript) {
  EXPECT_THAT(languageFolders({"zh-Hans.lproj", "Base.lproj"}, {"zh-Hant"}), ElementsAre("Base.lproj"));
  EXPECT_THAT(languageFolders({"sr.lproj", "Base.lproj"}, {"sr-Latn"}), ElementsAre("Base.lproj"));
}

TEST(LanguageFolders, PassOverALanguageThatTheBundleDoesNotSpeak) {
  EXPECT_EQ(best(kShipped, {"nb", "de"}), "de.lproj");
  EXPECT_EQ(best(kShipped, {"nb"}), "Base.lproj");
  EXPECT_EQ(best(kShipped, {"ca", "en"}), "Base.lproj");
  EXPECT_EQ(best(kShipped, {"gsw", "fr"}), "fr.lproj");
  EXPECT_EQ(best(kShipped, {"yue", "ja"}), "ja.lproj");
}

TEST(LanguageFolders, KnowOlderNamesOfALanguage) {
  EXPECT_EQ(best({"he.lproj", "Base.lproj"}, {"iw"}), "he.lproj");
  EXPECT_EQ(best({"id.lproj", "Base.lproj"}, {"in-ID"}), "id.lproj");
}

TEST(LanguageFolders, MayBeNamedWithUnderscores) {
  EXPECT_EQ(best({"zh_TW.lproj", "Base.lproj"}, {"zh-Hant"}), "zh_TW.lproj");
  EXPECT_EQ(best({"pt_BR.lproj", "Base.lproj"}, {"pt_PT"}), "pt_BR.lproj");
}

TEST(LanguageFolders, PassOverWhatIsNoLanguage) {
  EXPECT_THAT(
      languageFolders(kShipped, {"", "../../etc", "/", "C", "\xFF", "de/../fr", std::string(500, 'a')}),
      ElementsAre("Base.lproj"));
  EXPECT_THAT(languageFolders({".lproj", "x y.lproj", "..lproj", "de.lproj.old", "de.lproj"}, {"de"}),
              ElementsAre("de.lproj"));
}

}  // namespace
}  // namespace karno::platform
