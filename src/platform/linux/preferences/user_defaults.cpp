#include "platform/linux/preferences/user_defaults.h"

#include <filesystem>

#include "platform/posix/files/home.h"
#include "platform/posix/processes/process_information.h"

namespace karno::platform {
namespace {

std::string pathOfSuite(const std::string& suiteName) {
  if (suiteName.empty() || suiteName.find('/') != std::string::npos) return {};
  return homeFolder() + "/Library/Preferences/" + suiteName + ".plist";
}

}  // namespace

LinuxUserDefaults::LinuxUserDefaults(const std::string& suiteName, Notices& notices)
    : file_(pathOfSuite(suiteName), notices) {}

std::optional<Value> LinuxUserDefaults::objectForKey(std::string_view key) const {
  return file_.valueForKey(key);
}

bool LinuxUserDefaults::boolForKey(std::string_view key) const { return plainBoolean(objectForKey(key)); }

void LinuxUserDefaults::setBool(bool value, std::string_view key) { file_.setValue(Value(value), key); }

void LinuxUserDefaults::setObject(const std::optional<Value>& value, std::string_view key) {
  file_.setValue(value, key);
}

void LinuxUserDefaults::synchronize() { file_.synchronize(); }

LinuxUserDefaults& LinuxUserDefaultsStore::standardUserDefaults() {
  std::call_once(standardMade_, [this] {
    const std::string programName = std::filesystem::path(programPath()).filename().string();
    standard_ = std::make_unique<LinuxUserDefaults>(
        bundles_.mainBundle().bundleIdentifier().value_or(programName), notices_);
  });
  return *standard_;
}

std::unique_ptr<UserDefaults> LinuxUserDefaultsStore::makeSuite(const std::string& suiteName) {
  return std::make_unique<LinuxUserDefaults>(suiteName, notices_);
}

}  // namespace karno::platform
