#include "platform/user_defaults.h"

#include "world.h"

namespace karno::test {
namespace {

using platform::Value;

constexpr const char* kSuite = "it.vantul.karno";

class UserDefaultsContract : public Contract {
 protected:
  void storeElsewhere(const std::string& key, const Value& value) {
    here_.store(Preferences::OfTheUser, kSuite, key, value);
  }

  const std::unique_ptr<platform::UserDefaults> suite_ = services_.userDefaults.makeSuite(kSuite);
};

TEST_P(UserDefaultsContract, HoldNothingAtFirst) {
  EXPECT_EQ(suite_->objectForKey("key"), std::nullopt);
  EXPECT_FALSE(suite_->boolForKey("key"));
}

TEST_P(UserDefaultsContract, KeepWhatIsSet) {
  suite_->setBool(true, "one");
  suite_->setBool(true, "two");
  suite_->setBool(false, "one");
  suite_->synchronize();

  EXPECT_EQ(suite_->objectForKey("one"), Value(false));
  EXPECT_EQ(suite_->objectForKey("two"), Value(true));
}

TEST_P(UserDefaultsContract, AreSharedByTheObjectsOfASuiteAlone) {
  const auto same = services_.userDefaults.makeSuite(kSuite);
  const auto other = services_.userDefaults.makeSuite("it.vantul.other");

  suite_->setBool(true, "key");

  EXPECT_TRUE(same->boolForKey("key"));
  EXPECT_FALSE(other->boolForKey("key"));
  EXPECT_FALSE(services_.userDefaults.standardUserDefaults().boolForKey("key"));
}

TEST_P(UserDefaultsContract, SeeWhatAnotherProcessStores) {
  suite_->setBool(true, "ours");

  for (const Value& value : {Value(true), Value(7), Value("text"), Value(Value::Array{1, "two"})}) {
    storeElsewhere("theirs", value);
    EXPECT_EQ(suite_->objectForKey("theirs"), value);
  }
  suite_->setBool(false, "ours");

  EXPECT_EQ(suite_->objectForKey("theirs"), Value(Value::Array{1, "two"}));
  EXPECT_EQ(suite_->objectForKey("ours"), Value(false));
}

TEST_P(UserDefaultsContract, ReadBooleansThePlainWay) {
  const std::pair<Value, bool> readings[] = {
      {true, true},   {false, false}, {2, true},     {0, false},    {0.5, true}, {"YES", true},
      {"true", true}, {"1", true},    {"NO", false}, {"on", false}, {"", false}, {Value::Array{1}, false}};
  for (const auto& [value, truth] : readings) {
    storeElsewhere("key", value);
    EXPECT_EQ(suite_->boolForKey("key"), truth) << value.description();
  }
}

INSTANTIATE_TEST_SUITE_P(Fake, UserDefaultsContract, testing::Values(makeFakeWorld));
INSTANTIATE_TEST_SUITE_P(Native, UserDefaultsContract, testing::Values(makeNativeWorld));

}  // namespace
}  // namespace karno::test
