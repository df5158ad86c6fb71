#pragma once
#include "platform/managed_preferences.h"
#include "platform/property_lists.h"

namespace karno::platform {

// Preferences from property-list files where a Mac keeps them, under the machine root and in the user's home.
class LinuxManagedPreferences final : public ManagedPreferences {
 public:
  explicit LinuxManagedPreferences(const PropertyLists& propertyLists) : propertyLists_(propertyLists) {}

  std::optional<Value> copyAppValue(const std::string& key, const std::string& applicationID) override;
  bool isAppValueForced(const std::string& key, const std::string& applicationID) override;

 private:
  struct Found {
    Value value;
    bool isForced = false;
  };

  std::optional<Found> find(const std::string& key, const std::string& applicationID) const;

  const PropertyLists& propertyLists_;
};

}  // namespace karno::platform
