#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "elements_are.h"
#include "fake_platform.h"
#include "karnoctl_documents.h"
#include "platform/property_lists/property_lists.h"
#include "settings/karno_admin_settings.h"

namespace karno {
namespace {

using karno::test::ElementsAre;
using platform::Value;
using test::FakePlatform;
using ::testing::MatchesRegex;

constexpr const char* kUUID = "[0-9A-F]{8}-[0-9A-F]{4}-4[0-9A-F]{3}-[89AB][0-9A-F]{3}-[0-9A-F]{12}";

Value::Dictionary dictionaryIn(const std::string& path) {
  const auto list = platform::parseDictionary(test::textOfSource(path));
  return list ? list.value() : Value::Dictionary{};
}

const Value::Dictionary& dictionaryUnder(const std::string& key, const Value::Dictionary& list) {
  return *list.at(key).get<Value::Dictionary>();
}

// The only element of the array under the key.
const Value::Dictionary& onlyOneUnder(const std::string& key, const Value::Dictionary& list) {
  const Value::Array& array = *list.at(key).get<Value::Array>();
  EXPECT_EQ(array.size(), 1U);
  return *array.at(0).get<Value::Dictionary>();
}

std::string textUnder(const std::string& key, const Value::Dictionary& list) {
  return *list.at(key).get<std::string>();
}

// The example that administrators start from.
class AdministratorProfile : public testing::Test {
 protected:
  const Value::Dictionary profile_ = dictionaryIn("docs/examples/karno-admin.mobileconfig");
  const Value::Dictionary& payload_ = onlyOneUnder("PayloadContent", profile_);
  const Value::Dictionary& domains_ = dictionaryUnder("PayloadContent", payload_);
  const Value::Dictionary& settings_ = dictionaryUnder(
      "mcx_preference_settings", onlyOneUnder("Forced", dictionaryUnder("it.vantul.KarnoAdmin", domains_)));
};

TEST_F(AdministratorProfile, IsAProfileForTheWholeMac) {
  EXPECT_EQ(textUnder("PayloadType", profile_), "Configuration");
  EXPECT_EQ(textUnder("PayloadScope", profile_), "System");
  EXPECT_EQ(profile_.at("PayloadVersion"), Value(1));
  EXPECT_EQ(textUnder("PayloadType", payload_), "com.apple.ManagedClient.preferences");
  EXPECT_EQ(payload_.at("PayloadVersion"), Value(1));
}

TEST_F(AdministratorProfile, HasNamesThatDifferFromOneAnother) {
  EXPECT_THAT(textUnder("PayloadUUID", profile_), MatchesRegex(kUUID));
  EXPECT_THAT(textUnder("PayloadUUID", payload_), MatchesRegex(kUUID));
  EXPECT_NE(textUnder("PayloadUUID", profile_), textUnder("PayloadUUID", payload_));
  EXPECT_NE(textUnder("PayloadIdentifier", profile_), textUnder("PayloadIdentifier", payload_));
}

TEST_F(AdministratorProfile, ForcesTheTwoKeysOfTheOneDomainAsStrings) {
  EXPECT_EQ(domains_.size(), 1U);
  EXPECT_EQ(settings_, (Value::Dictionary{{"UPDATES_ENABLED", "NO"}, {"USE_FILE_PROVIDER", "YES"}}));
}

TEST_F(AdministratorProfile, IsReadByTheLauncherAsItSays) {
  FakePlatform machine;
  machine.managedPreferences.domains[std::string(KarnoAdminSettings::applicationID())] = settings_;

  EXPECT_EQ(KarnoAdminSettings::instance().updatesEnabled(), KarnoTristate::Off);
  EXPECT_EQ(KarnoAdminSettings::instance().useFileProvider(), KarnoTristate::On);
  EXPECT_EQ(textUnder("PayloadDescription", profile_),
            "The launcher's automatic updates are off, and it runs the File Provider build.");
}

TEST(LoginAgent, OpensTheLauncherOnceInADesktopSession) {
  const Value::Dictionary agent = dictionaryIn("docs/examples/it.vantul.karno.login.plist");

  EXPECT_EQ(agent, (Value::Dictionary{
                       {"AssociatedBundleIdentifiers", Value::Array{"it.vantul.KarnoWrapper"}},
                       {"Label", "it.vantul.karno.login"},
                       {"LimitLoadToSessionType", "Aqua"},
                       {"ProgramArguments", Value::Array{"/usr/bin/open", "-a", "/Applications/Karno.app"}},
                       {"RunAtLoad", true}}));
}

}  // namespace
}  // namespace karno
