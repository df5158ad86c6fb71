#pragma once
#include <mutex>

#include "platform/cocoa/runtime/objc.h"
#include "platform/user_defaults.h"

namespace karno::platform {

// NSUserDefaults, which watches its store for what other processes write.
class FoundationUserDefaults final : public UserDefaults {
 public:
  // `defaults` is an NSUserDefaults, or nothing: then every read finds nothing and a write is reported.
  FoundationUserDefaults(objc::Object defaults, std::string name)
      : defaults_(std::move(defaults)), name_(std::move(name)) {}

  std::optional<Value> objectForKey(std::string_view key) const override;
  bool boolForKey(std::string_view key) const override;
  void setBool(bool value, std::string_view key) override;
  void synchronize() override;

 private:
  const objc::Object defaults_;
  const std::string name_;
};

class FoundationUserDefaultsStore final : public UserDefaultsStore {
 public:
  UserDefaults& standardUserDefaults() override;

  // macOS gives no suite of the launcher's own bundle identifier or of the global domain.
  std::unique_ptr<UserDefaults> makeSuite(const std::string& suiteName) override;

 private:
  std::once_flag standardMade_;
  std::unique_ptr<UserDefaults> standard_;
};

}  // namespace karno::platform
