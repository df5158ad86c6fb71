#pragma once
#include <map>
#include <set>
#include <string>

#include "platform/managed_preferences.h"

namespace karno::test {

// What administrators have forced, by domain.
class FakeManagedPreferences final : public platform::ManagedPreferences {
 public:
  std::optional<platform::Value> copyAppValue(const std::string& key,
                                              const std::string& applicationID) override {
    const platform::Value::Dictionary& domain = domains[applicationID];
    const auto found = domain.find(key);
    if (found == domain.end()) return std::nullopt;
    return found->second;
  }

  bool isAppValueForced(const std::string& key, const std::string& applicationID) override {
    return copyAppValue(key, applicationID) && !unforced.contains(key);
  }

  std::map<std::string, platform::Value::Dictionary> domains;
  std::set<std::string> unforced;  // keys that lie in the user's or the machine's own preferences
};

}  // namespace karno::test
