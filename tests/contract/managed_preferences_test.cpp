#include "platform/managed_preferences.h"

#include "world.h"

namespace karno::test {
namespace {

using platform::Value;

constexpr const char* kDomain = "it.vantul.KarnoAdmin";

class ManagedPreferencesContract : public Contract {
 protected:
  void store(Preferences where, const Value& value) { here_.store(where, kDomain, "KEY", value); }
  std::optional<Value> value() { return preferences_.copyAppValue("KEY", kDomain); }
  bool isForced() { return preferences_.isAppValueForced("KEY", kDomain); }

  platform::ManagedPreferences& preferences_ = services_.managedPreferences;
};

TEST_P(ManagedPreferencesContract, HoldNothingThatNobodySet) {
  here_.store(Preferences::Forced, kDomain, "OTHER", "text");
  here_.store(Preferences::Forced, "it.vantul.other", "KEY", "text");

  EXPECT_EQ(value(), std::nullopt);
  EXPECT_FALSE(isForced());
  EXPECT_EQ(preferences_.copyAppValue("KEY", ""), std::nullopt);
}

TEST_P(ManagedPreferencesContract, PreferForcedValuesThenTheUsersThenThoseForAll) {
  store(Preferences::OfAllUsers, "for all");
  EXPECT_EQ(value(), Value("for all"));
  EXPECT_FALSE(isForced());

  store(Preferences::OfTheUser, "the user's");
  EXPECT_EQ(value(), Value("the user's"));
  EXPECT_FALSE(isForced());

  store(Preferences::Forced, "forced");
  EXPECT_EQ(value(), Value("forced"));
  EXPECT_TRUE(isForced());
}

TEST_P(ManagedPreferencesContract, HaveValuesOfAnyType) {
  for (const Value& each : {Value(true), Value(7), Value("text"), Value(Value::Array{1, "two"})}) {
    store(Preferences::Forced, each);
    EXPECT_EQ(value(), each);
  }
}

// Otherwise damage to the file of forced values would hand the choice to the user.
TEST_P(ManagedPreferencesContract, HoldNothingWhenTheForcedValuesAreDamaged) {
  store(Preferences::Forced, "forced");
  store(Preferences::OfTheUser, "the user's");
  here_.damageForcedValues(kDomain);

  EXPECT_EQ(value(), std::nullopt);
  EXPECT_FALSE(isForced());
}

TEST_P(ManagedPreferencesContract, TakeTheUsersDefaultsForTheUsersValues) {
  services_.userDefaults.makeSuite(kDomain)->setBool(true, "KEY");

  EXPECT_EQ(value(), Value(true));
  EXPECT_FALSE(isForced());
}

INSTANTIATE_TEST_SUITE_P(Fake, ManagedPreferencesContract, testing::Values(makeFakeWorld));
INSTANTIATE_TEST_SUITE_P(Native, ManagedPreferencesContract, testing::Values(makeNativeWorld));

}  // namespace
}  // namespace karno::test
