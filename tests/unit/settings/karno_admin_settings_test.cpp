#include "settings/karno_admin_settings.h"

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

// Everything that one key of the administrator's reads as.
struct Reading {
  KarnoTristate tristate;
  bool isSet;
  bool orTrue;   // read with the default true
  bool orFalse;  // read with the default false
  bool operator==(const Reading&) const = default;
};

void PrintTo(const Reading& reading, std::ostream* out) {
  *out << "tristate " << static_cast<int>(reading.tristate) << ", set " << reading.isSet << ", or true "
       << reading.orTrue << ", or false " << reading.orFalse;
}

constexpr Reading kOn{.tristate = KarnoTristate::On, .isSet = true, .orTrue = true, .orFalse = true};
constexpr Reading kOff{.tristate = KarnoTristate::Off, .isSet = true, .orTrue = false, .orFalse = false};
constexpr Reading kEmpty{.tristate = KarnoTristate::Off, .isSet = false, .orTrue = false, .orFalse = false};
constexpr Reading kNotSet{
    .tristate = KarnoTristate::NotSet, .isSet = false, .orTrue = true, .orFalse = false};

Reading read(const std::string& key) {
  const KarnoAdminSettings& settings = KarnoAdminSettings::instance();
  return {.tristate = settings.tristateForKey(key),
          .isSet = settings.isValueSetForKey(key),
          .orTrue = settings.boolForKey(key, true),
          .orFalse = settings.boolForKey(key, false)};
}

TEST(KarnoTristate, HasTheNumbersThatCallersCompareWith) {
  EXPECT_EQ(static_cast<int>(KarnoTristate::On), 0);
  EXPECT_EQ(static_cast<int>(KarnoTristate::Off), 1);
  EXPECT_EQ(static_cast<int>(KarnoTristate::NotSet), 2);
  EXPECT_EQ(sizeof(KarnoTristate), 4U);
}

TEST(KarnoAdminSettings, ReadTheAdministratorsDomain) {
  FakePlatform machine;
  machine.managedPreferences.domains["it.vantul.karno"] = {{"USE_FILE_PROVIDER", "YES"}};

  EXPECT_EQ(KarnoAdminSettings::applicationID(), "it.vantul.KarnoAdmin");
  EXPECT_EQ(KarnoAdminSettings::instance().useFileProvider(), KarnoTristate::NotSet);
}

TEST(KarnoAdminSettings, ReadUpdatesEnabledAndUseFileProviderUnderTheirKeys) {
  FakePlatform machine;
  machine.withAdmin("UPDATES_ENABLED", "NO").withAdmin("USE_FILE_PROVIDER", "YES");

  EXPECT_EQ(KarnoAdminSettings::instance().updatesEnabled(), KarnoTristate::Off);
  EXPECT_EQ(KarnoAdminSettings::instance().useFileProvider(), KarnoTristate::On);
}

TEST(KarnoAdminSettings, TakeAnAbsentKeyAsNotSetWithoutALine) {
  FakePlatform machine;

  EXPECT_EQ(read("USE_FILE_PROVIDER"), kNotSet);
  EXPECT_EQ(KarnoAdminSettings::instance().objectForKey("USE_FILE_PROVIDER"), std::nullopt);
  EXPECT_EQ(KarnoAdminSettings::instance().stringForKey("USE_FILE_PROVIDER"), std::nullopt);
  EXPECT_THAT(machine.console(), IsEmpty());
}

TEST(KarnoAdminSettings, AreReadAfreshEveryTime) {
  FakePlatform machine;
  const KarnoAdminSettings& settings = KarnoAdminSettings::instance();

  machine.withAdmin("USE_FILE_PROVIDER", "YES");
  const KarnoTristate first = settings.useFileProvider();
  machine.withAdmin("USE_FILE_PROVIDER", "NO");
  const KarnoTristate second = settings.useFileProvider();
  machine.withoutAdmin("USE_FILE_PROVIDER");
  const KarnoTristate third = settings.useFileProvider();

  EXPECT_EQ(first, KarnoTristate::On);
  EXPECT_EQ(second, KarnoTristate::Off);
  EXPECT_EQ(third, KarnoTristate::NotSet);
}

TEST(KarnoAdminSettings, MayBeReadOnAnyThread) {
  FakePlatform machine;
  machine.withAdmin("USE_FILE_PROVIDER", "YES");
  KarnoTristate seen = KarnoTristate::NotSet;

  machine.onThread([&] { seen = KarnoAdminSettings::instance().useFileProvider(); });
  machine.runUntilIdle();

  EXPECT_EQ(seen, KarnoTristate::On);
}

TEST(KarnoAdminSettingsLog, HasOneWarningForEachReadOfAValue) {
  FakePlatform machine;
  machine.withAdmin("USE_FILE_PROVIDER", "YES");

  static_cast<void>(KarnoAdminSettings::instance().tristateForKey("USE_FILE_PROVIDER"));
  static_cast<void>(KarnoAdminSettings::instance().boolForKey("USE_FILE_PROVIDER", false));

  EXPECT_THAT(machine.consoleMessages(), ElementsAre(Line("WARN", "Object=YES"), Line("WARN", "Object=YES")));
}

struct LoggedValue {
  Value value;
  std::string text;
};

void PrintTo(const LoggedValue& logged, std::ostream* out) { *out << logged.text; }

class KarnoAdminSettingsLogOf : public ::testing::TestWithParam<LoggedValue> {};

TEST_P(KarnoAdminSettingsLogOf, ShowsTheValueWhateverItsType) {
  FakePlatform machine;
  machine.withAdmin("KEY", GetParam().value);

  const auto read = KarnoAdminSettings::instance().objectForKey("KEY");

  EXPECT_EQ(read, GetParam().value);
  EXPECT_THAT(machine.consoleMessages(), ElementsAre(Line("WARN", GetParam().text)));
}

INSTANTIATE_TEST_SUITE_P(Values, KarnoAdminSettingsLogOf,
                         ::testing::Values(LoggedValue{"false", "Object=false"}, LoggedValue{"", "Object="},
                                           LoggedValue{"two words", "Object=two words"},
                                           LoggedValue{true, "Object=1"}, LoggedValue{false, "Object=0"},
                                           LoggedValue{42, "Object=42"},
                                           LoggedValue{Value::Array{}, "Object=(\n)"}));

struct StringReading {
  std::string text;
  Reading reading;
};

void PrintTo(const StringReading& reading, std::ostream* out) { *out << '"' << reading.text << '"'; }

class KarnoAdminSettingsString : public ::testing::TestWithParam<StringReading> {};

TEST_P(KarnoAdminSettingsString, ReadsByTheStringTruthRule) {
  FakePlatform machine;
  machine.withAdmin("KEY", GetParam().text);

  EXPECT_EQ(read("KEY"), GetParam().reading);
  EXPECT_EQ(KarnoAdminSettings::instance().stringForKey("KEY"), GetParam().text);
}

INSTANTIATE_TEST_SUITE_P(
    True, KarnoAdminSettingsString,
    ::testing::Values(StringReading{"YES", kOn}, StringReading{"Yes", kOn}, StringReading{"yes", kOn},
                      StringReading{"y", kOn}, StringReading{"TRUE", kOn}, StringReading{"true", kOn},
                      StringReading{"t", kOn}, StringReading{"1", kOn}, StringReading{"9", kOn},
                      StringReading{"01", kOn}, StringReading{" 0012", kOn}, StringReading{"\t\n 1", kOn},
                      StringReading{"+1", kOn}, StringReading{"-1", kOn}, StringReading{"-00yes", kOn},
                      StringReading{"Yellow", kOn}, StringReading{"2nd", kOn}));

INSTANTIATE_TEST_SUITE_P(False, KarnoAdminSettingsString,
                         ::testing::Values(StringReading{"", kEmpty}, StringReading{"NO", kOff},
                                           StringReading{"false", kOff}, StringReading{"0", kOff},
                                           StringReading{"000", kOff}, StringReading{"x", kOff},
                                           StringReading{"   ", kOff}, StringReading{"+", kOff},
                                           StringReading{"+-1", kOff}, StringReading{"0 1", kOff},
                                           StringReading{"+ 1", kOff}, StringReading{"on", kOff},
                                           StringReading{"0.5", kOff}, StringReading{"\xC3\xA9", kOff}));

class KarnoAdminSettingsOtherType : public ::testing::TestWithParam<Value> {};

TEST_P(KarnoAdminSettingsOtherType, ReadsAsNotSetButIsLogged) {
  FakePlatform machine;
  machine.withAdmin("KEY", GetParam());

  EXPECT_EQ(read("KEY"), kNotSet);
  EXPECT_EQ(KarnoAdminSettings::instance().stringForKey("KEY"), std::nullopt);
  EXPECT_THAT(machine.console(), ::testing::SizeIs(5));
}

INSTANTIATE_TEST_SUITE_P(Types, KarnoAdminSettingsOtherType,
                         ::testing::ValuesIn(std::vector<Value>{
                             true, false, 1, 1.5, test::kStartOfTest, Value::Data{std::byte{1}},
                             Value::Array{"YES"}, Value::Dictionary{{"a", "YES"}}}));

}  // namespace
}  // namespace karno
