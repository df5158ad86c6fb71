#include "platform/linux/bundles/preferred_languages.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "../../support/property_list_texts.h"
#include "../../support/scoped_environment.h"
#include "../../support/temporary_folder.h"
#include "elements_are.h"

namespace karno::platform {
namespace {

using karno::test::ElementsAre;
using test::propertyList;
using test::ScopedEnvironment;
using test::stringEntry;
using test::TemporaryFolder;
using ::testing::IsEmpty;
using ::testing::SizeIs;

class PreferredLanguages : public testing::Test {
 protected:
  void setPreferences(const std::string& elements) const {
    folder.write("Library/Preferences/.GlobalPreferences.plist", propertyList(elements));
  }
  static std::vector<std::string> languages() { return preferredLanguages(); }

  const TemporaryFolder folder;
  const ScopedEnvironment home{"HOME", folder.path()};
  const ScopedEnvironment language{"LANGUAGE", std::nullopt};
  const ScopedEnvironment all{"LC_ALL", std::nullopt};
  const ScopedEnvironment messages{"LC_MESSAGES", std::nullopt};
  const ScopedEnvironment lang{"LANG", std::nullopt};
};

TEST_F(PreferredLanguages, AreThoseOfTheGlobalPreferences) {
  setPreferences("<key>AppleLanguages</key><array><string>zh-Hant-HK</string><string>en-GB</string></array>");
  lang.set("de_AT.UTF-8");

  EXPECT_THAT(languages(), ElementsAre("zh-Hant-HK", "en-GB"));
}

TEST_F(PreferredLanguages, AreReadAfresh) {
  setPreferences("<key>AppleLanguages</key><array><string>de</string></array>");
  const std::vector<std::string> before = languages();
  setPreferences("<key>AppleLanguages</key><array><string>fr</string></array>");

  EXPECT_THAT(before, ElementsAre("de"));
  EXPECT_THAT(languages(), ElementsAre("fr"));
}

TEST_F(PreferredLanguages, PassOverElementsThatAreNoTags) {
  setPreferences(
      "<key>AppleLanguages</key><array><integer>3</integer><string></string><string>de</string><string>" +
      std::string(65, 'x') + "</string></array>");

  EXPECT_THAT(languages(), ElementsAre("de"));
}

TEST_F(PreferredLanguages, AreThoseOfTheEnvironmentWhenThePreferencesHaveNone) {
  lang.set("de_AT.UTF-8@euro");

  EXPECT_THAT(languages(), ElementsAre("de-AT"));
  setPreferences(stringEntry("AppleLocale", "fr_FR"));
  EXPECT_THAT(languages(), ElementsAre("de-AT"));
  setPreferences("<key>AppleLanguages</key><array/>");
  EXPECT_THAT(languages(), ElementsAre("de-AT"));
  setPreferences(stringEntry("AppleLanguages", "fr"));
  EXPECT_THAT(languages(), ElementsAre("de-AT"));
  folder.write("Library/Preferences/.GlobalPreferences.plist", "damaged");
  EXPECT_THAT(languages(), ElementsAre("de-AT"));
}

TEST_F(PreferredLanguages, TakeTheFirstLocaleOfTheEnvironmentThatIsSet) {
  lang.set("de_DE");
  EXPECT_THAT(languages(), ElementsAre("de-DE"));
  messages.set("fr_FR");
  EXPECT_THAT(languages(), ElementsAre("fr-FR"));
  all.set("it_IT");
  EXPECT_THAT(languages(), ElementsAre("it-IT"));
  all.set("");
  EXPECT_THAT(languages(), ElementsAre("fr-FR"));
}

TEST_F(PreferredLanguages, TakeTheListOfTheEnvironmentInPlaceOfItsLocale) {
  lang.set("de_DE.UTF-8");
  language.set("nb:pt_PT::fr");

  EXPECT_THAT(languages(), ElementsAre("nb", "pt-PT", "fr"));
}

TEST_F(PreferredLanguages, AreNoneForTheCLocale) {
  EXPECT_THAT(languages(), IsEmpty());
  language.set("de");
  lang.set("C.UTF-8");
  EXPECT_THAT(languages(), IsEmpty());
  lang.set("POSIX");
  EXPECT_THAT(languages(), IsEmpty());
}

TEST_F(PreferredLanguages, HaveALimit) {
  std::string list;
  for (int count = 0; count < 1000; ++count) list += "de:";
  lang.set("de_DE");
  language.set(list);

  EXPECT_THAT(languages(), SizeIs(32));
}

}  // namespace
}  // namespace karno::platform
