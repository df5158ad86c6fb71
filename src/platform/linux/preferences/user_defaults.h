#pragma once
#include <memory>
#include <mutex>
#include <string>

#include "platform/bundles.h"
#include "platform/linux/preferences/defaults_file.h"
#include "platform/user_defaults.h"

namespace karno::platform {

// One suite, in a property-list file of the user's preferences folder.
class LinuxUserDefaults final : public UserDefaults {
 public:
  // A name that is empty or holds a "/" is no suite: it reads as empty and stores nothing.
  LinuxUserDefaults(const std::string& suiteName, Notices& notices);

  std::optional<Value> objectForKey(std::string_view key) const override;
  bool boolForKey(std::string_view key) const override;
  void setBool(bool value, std::string_view key) override;
  void synchronize() override;

  // Without a value the key is removed.
  void setObject(const std::optional<Value>& value, std::string_view key);

 private:
  mutable DefaultsFile file_;
};

// The standard defaults are named after the main bundle's identifier; without one, after the program.
class LinuxUserDefaultsStore final : public UserDefaultsStore {
 public:
  LinuxUserDefaultsStore(const Bundles& bundles, Notices& notices) : bundles_(bundles), notices_(notices) {}

  LinuxUserDefaults& standardUserDefaults() override;
  std::unique_ptr<UserDefaults> makeSuite(const std::string& suiteName) override;

 private:
  const Bundles& bundles_;
  Notices& notices_;
  std::once_flag standardMade_;
  std::unique_ptr<LinuxUserDefaults> standard_;
};

}  // namespace karno::platform
