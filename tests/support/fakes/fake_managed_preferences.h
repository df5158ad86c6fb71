#pragma once
#include <map>
#include <set>
#include <string>

#include "fake_user_defaults.h"
#include "platform/managed_preferences.h"

namespace karno::test {

// What administrators have forced, by domain, before what the user has of that name in the defaults and what
// is set for all users.
class FakeManagedPreferences final : public platform::ManagedPreferences {
 public:
  explicit FakeManagedPreferences(FakeUserDefaultsStore& userDefaults) : userDefaults_(userDefaults) {}

  std::optional<platform::Value> copyAppValue(const std::string& key,
                                              const std::string& applicationID) override {
    if (damaged.contains(applicationID)) return std::nullopt;
    for (const auto* values :
         {&domains[applicationID], &userDefaults_.suite(applicationID).values, &ofAllUsers[applicationID]}) {
      const auto found = values->find(key);
      if (found != values->end()) return found->second;
    }
    return std::nullopt;
  }

  bool isAppValueForced(const std::string& key, const std::string& applicationID) override {
    return domains[applicationID].contains(key) && !damaged.contains(applicationID);
  }

  std::map<std::string, platform::Value::Dictionary> domains;  // forced values
  std::map<std::string, platform::Value::Dictionary> ofAllUsers;
  std::set<std::string> damaged;  // domains whose forced values cannot be read

 private:
  FakeUserDefaultsStore& userDefaults_;
};

}  // namespace karno::test
