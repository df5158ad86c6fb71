#pragma once
#include "platform/managed_preferences.h"

namespace karno::platform {

// Preferences from property-list files where a Mac keeps them, under the machine root and in the user's home.
class LinuxManagedPreferences final : public ManagedPreferences {
 public:
  std::optional<Value> copyAppValue(const std::string& key, const std::string& applicationID) override;
  bool isAppValueForced(const std::string& key, const std::string& applicationID) override;

 private:
  struct Found {
    Value value;
    bool isForced = false;
  };

  static std::optional<Found> find(const std::string& key, const std::string& applicationID);
};

}  // namespace karno::platform
