#include "settings/karno_settings.h"

#include <gmock/gmock.h>

#include "elements_are.h"
#include "fake_platform.h"
#include "printing.h"

namespace karno {
namespace {

using karno::test::ElementsAre;
using platform::Value;
using test::FakePlatform;
using test::Line;
using ::testing::IsEmpty;
using ::testing::Pair;

// On a disk that folds case the suite and the domain of a client named it.vantul.Karno are one.
class KarnoSettingsTest : public ::testing::TestWithParam<bool> {
 protected:
  KarnoSettingsTest() { machine.userDefaults.foldsCase = GetParam(); }

  FakePlatform machine;
};

class KarnoSettingsUseFileProvider : public KarnoSettingsTest {};

std::string diskName(const ::testing::TestParamInfo<bool>& disk) {
  return disk.param ? "FoldingCase" : "KeepingCase";
}

INSTANTIATE_TEST_SUITE_P(Disk, KarnoSettingsTest, ::testing::Bool(), diskName);
INSTANTIATE_TEST_SUITE_P(Disk, KarnoSettingsUseFileProvider, ::testing::Bool(), diskName);

TEST_P(KarnoSettingsTest, OfAnEmptySuiteAreTheDefaults) {
  const KarnoSettings& settings = KarnoSettings::instance();

  EXPECT_FALSE(settings.verboseLogging());
  EXPECT_TRUE(settings.isFirstStartup());
  EXPECT_FALSE(settings.useFileProvider());
  EXPECT_FALSE(settings.useFileProviderVerified());
}

TEST_P(KarnoSettingsTest, LieInTheSuiteSharedWithTheEmbeddedApplication) {
  static_cast<void>(KarnoSettings::instance());

  EXPECT_THAT(machine.userDefaults.suitesMade(), ElementsAre("it.vantul.karno"));
}

TEST_P(KarnoSettingsTest, MakeTheSuiteOnceTogetherWithTheObject) {
  const platform::UserDefaults* first = &KarnoSettings::instance().userDefaults();
  static_cast<void>(KarnoSettings::instance().verboseLogging());
  const platform::UserDefaults* second = &KarnoSettings::instance().userDefaults();

  EXPECT_EQ(first, second);
  EXPECT_THAT(machine.userDefaults.suitesMade(), ElementsAre("it.vantul.karno"));
}

TEST_P(KarnoSettingsTest, ReadUnderTheirKeys) {
  machine.withUserSetting("verboseLogging", true)
      .withUserSetting("isFirstStartup", false)
      .withUserSetting("useFileProvider", true)
      .withUserSetting("useFileProviderVerified", true);

  const KarnoSettings& settings = KarnoSettings::instance();

  EXPECT_TRUE(settings.verboseLogging());
  EXPECT_FALSE(settings.isFirstStartup());
  EXPECT_TRUE(settings.useFileProvider());
  EXPECT_TRUE(settings.useFileProviderVerified());
}

TEST_P(KarnoSettingsTest, SeeWhatAnotherProcessWroteAtTheNextRead) {
  const KarnoSettings& settings = KarnoSettings::instance();
  const bool before = settings.isFirstStartup();

  machine.withFirstStartup(false);
  const bool after = settings.isFirstStartup();

  EXPECT_TRUE(before);
  EXPECT_FALSE(after);
}

TEST_P(KarnoSettingsTest, WriteUnderTheirKeys) {
  KarnoSettings::instance().setUseFileProvider(true);
  KarnoSettings::instance().setUseFileProviderVerified(true);
  KarnoSettings::instance().setUseFileProvider(false);

  EXPECT_THAT(machine.settings().writes,
              ElementsAre(Pair("useFileProvider", Value(true)), Pair("useFileProviderVerified", Value(true)),
                          Pair("useFileProvider", Value(false))));
}

TEST_P(KarnoSettingsTest, WriteNothingWhenTheyAreRead) {
  const KarnoSettings& settings = KarnoSettings::instance();

  static_cast<void>(settings.verboseLogging());
  static_cast<void>(settings.isFirstStartup());
  static_cast<void>(settings.useFileProvider());
  static_cast<void>(settings.useFileProviderVerified());

  EXPECT_THAT(machine.settings().writes, IsEmpty());
  EXPECT_THAT(machine.console(), IsEmpty());
}

TEST_P(KarnoSettingsUseFileProvider, IsTheAdministratorsWhenForcedOn) {
  machine.withAdmin("USE_FILE_PROVIDER", "YES").withUserSetting("useFileProvider", false);

  const bool before = KarnoSettings::instance().useFileProvider();
  KarnoSettings::instance().setUseFileProvider(false);
  const bool after = KarnoSettings::instance().useFileProvider();

  EXPECT_TRUE(before);
  EXPECT_TRUE(after);
}

TEST_P(KarnoSettingsUseFileProvider, IsTheAdministratorsWhenForcedOff) {
  machine.withAdmin("USE_FILE_PROVIDER", "NO").withUserSetting("useFileProvider", true);

  EXPECT_FALSE(KarnoSettings::instance().useFileProvider());
}

TEST_P(KarnoSettingsUseFileProvider, IsTheUsersWhenTheAdministratorSetNothing) {
  machine.withUserSetting("useFileProvider", true);

  EXPECT_TRUE(KarnoSettings::instance().useFileProvider());
}

TEST_P(KarnoSettingsUseFileProvider, IsTheUsersWhenTheAdministratorsValueIsNoString) {
  machine.withAdmin("USE_FILE_PROVIDER", true).withUserSetting("useFileProvider", false);

  EXPECT_FALSE(KarnoSettings::instance().useFileProvider());
  EXPECT_THAT(machine.consoleMessages(), ElementsAre(Line("WARN", "Object=1")));
}

TEST_P(KarnoSettingsUseFileProvider, WrittenUnderTheAdministratorsHoldsWhenThatIsRemoved) {
  machine.withAdmin("USE_FILE_PROVIDER", "YES").withUserSetting("useFileProvider", true);

  KarnoSettings::instance().setUseFileProvider(false);
  machine.withoutAdmin("USE_FILE_PROVIDER");

  EXPECT_FALSE(KarnoSettings::instance().useFileProvider());
}

TEST(KarnoSettingsBesideAClientOfTheSameName, AreTheClientsOwnOnADiskThatFoldsCase) {
  FakePlatform machine;
  machine.userDefaults.foldsCase = true;
  auto& client = machine.userDefaults.suite("it.vantul.Karno");
  client.values.insert_or_assign("verboseLogging", true);
  client.values.insert_or_assign("window", "200 300");

  EXPECT_TRUE(KarnoSettings::instance().verboseLogging());
  KarnoSettings::instance().setUseFileProvider(true);

  EXPECT_THAT(client.values,
              ElementsAre(Pair("useFileProvider", Value(true)), Pair("verboseLogging", Value(true)),
                          Pair("window", Value("200 300"))));
}

TEST(KarnoSettingsBesideAClientOfTheSameName, AreApartOnADiskThatKeepsCase) {
  FakePlatform machine;
  machine.userDefaults.suite("it.vantul.Karno").values.insert_or_assign("verboseLogging", true);

  EXPECT_FALSE(KarnoSettings::instance().verboseLogging());
}

struct Truth {
  Value value;
  bool withDefaultFalse;
  bool withDefaultTrue;
  bool plain;
};

void PrintTo(const Truth& truth, std::ostream* out) { *out << '"' << truth.value.description() << '"'; }

class KarnoSettingsTruth : public ::testing::TestWithParam<Truth> {};

TEST_P(KarnoSettingsTruth, OfAValueUnderAKeyWithADefault) {
  FakePlatform machine;
  machine.withUserSetting("verboseLogging", GetParam().value)
      .withUserSetting("isFirstStartup", GetParam().value);

  EXPECT_EQ(KarnoSettings::instance().verboseLogging(), GetParam().withDefaultFalse);
  EXPECT_EQ(KarnoSettings::instance().isFirstStartup(), GetParam().withDefaultTrue);
}

TEST_P(KarnoSettingsTruth, OfAValueReadPlainly) {
  FakePlatform machine;
  machine.withUserSetting("useFileProvider", GetParam().value)
      .withUserSetting("useFileProviderVerified", GetParam().value);

  EXPECT_EQ(KarnoSettings::instance().useFileProvider(), GetParam().plain);
  EXPECT_EQ(KarnoSettings::instance().useFileProviderVerified(), GetParam().plain);
}

INSTANTIATE_TEST_SUITE_P(Numbers, KarnoSettingsTruth,
                         ::testing::Values(Truth{true, true, true, true}, Truth{false, false, false, false},
                                           Truth{1, true, true, true}, Truth{0, false, false, false},
                                           Truth{-3, true, true, true}, Truth{0.5, true, true, true},
                                           Truth{0.0, false, false, false}));

// A string with a default follows the loose rule, one read plainly the strict one.
INSTANTIATE_TEST_SUITE_P(Strings, KarnoSettingsTruth,
                         ::testing::Values(Truth{"YES", true, true, true}, Truth{"yes", true, true, true},
                                           Truth{"True", true, true, true}, Truth{"1", true, true, true},
                                           Truth{"-2", true, true, true}, Truth{"NO", false, false, false},
                                           Truth{"", false, false, false}, Truth{"0", false, false, false},
                                           Truth{"y", true, true, false},
                                           Truth{"Yes please", true, true, false},
                                           Truth{" 0012", true, true, true},
                                           Truth{"on", false, false, false}));

INSTANTIATE_TEST_SUITE_P(OtherTypes, KarnoSettingsTruth,
                         ::testing::Values(Truth{test::kStartOfTest, false, true, false},
                                           Truth{Value::Array{true}, false, true, false},
                                           Truth{Value::Dictionary{{"a", true}}, false, true, false},
                                           Truth{Value::Data{std::byte{1}}, false, true, false}));

}  // namespace
}  // namespace karno
