#pragma once
#include "platform/bundles.h"
#include "platform/linux/preferences/user_defaults.h"
#include "platform/linux/updater/update_services.h"

namespace karno::platform::updates {

// The launcher's user defaults before its Info.plist.
class BundleSettings final : public UpdateSettings {
 public:
  BundleSettings(LinuxUserDefaultsStore& userDefaults, const Bundles& bundles)
      : userDefaults_(userDefaults), bundles_(bundles) {}

  std::optional<Value> objectForKey(std::string_view key) const override {
    if (auto own = userDefaults_.standardUserDefaults().objectForKey(key)) return own;
    return bundles_.mainBundle().objectForInfoDictionaryKey(key);
  }
  void setObject(Value value, std::string_view key) override {
    userDefaults_.standardUserDefaults().setObject(std::move(value), key);
  }
  void removeObject(std::string_view key) override {
    if (userDefaults_.standardUserDefaults().objectForKey(key))
      userDefaults_.standardUserDefaults().setObject(std::nullopt, key);
  }

 private:
  LinuxUserDefaultsStore& userDefaults_;
  const Bundles& bundles_;
};

}  // namespace karno::platform::updates
