#pragma once
#include "platform/managed_preferences.h"

namespace karno::platform {

// CFPreferences, which puts what a configuration profile forces before everything else.
class MacManagedPreferences final : public ManagedPreferences {
 public:
  std::optional<Value> copyAppValue(const std::string& key, const std::string& applicationID) override;
  bool isAppValueForced(const std::string& key, const std::string& applicationID) override;
};

}  // namespace karno::platform
