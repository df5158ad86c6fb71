#include "platform/linux/preferences/managed_preferences.h"

#include <utility>

#include "platform/linux/files/property_list_file.h"
#include "platform/posix/files/home.h"
#include "platform/system_path.h"

namespace karno::platform {
namespace {

// The user of the machine, in whose home this process runs; the account's where that is no home of the
// machine's.
std::string machineUserName() {
  const std::string users = systemPath("/Users/");
  const std::string home = homeFolder();
  if (!home.starts_with(users)) return userName();
  const std::string name = home.substr(users.size());
  return name.empty() || name.find('/') != std::string::npos ? userName() : name;
}

}  // namespace

std::optional<Value> LinuxManagedPreferences::copyAppValue(const std::string& key,
                                                           const std::string& applicationID) {
  std::optional<Found> found = find(key, applicationID);
  return found ? std::optional(std::move(found->value)) : std::nullopt;
}

bool LinuxManagedPreferences::isAppValueForced(const std::string& key, const std::string& applicationID) {
  const std::optional<Found> found = find(key, applicationID);
  return found && found->isForced;
}

std::optional<LinuxManagedPreferences::Found> LinuxManagedPreferences::find(
    const std::string& key, const std::string& applicationID) {
  // A "/" would lead out of the preferences folders.
  if (applicationID.empty() || applicationID.find('/') != std::string::npos) return std::nullopt;

  const std::string file = "/" + applicationID + ".plist";
  const std::pair<std::string, bool> places[] = {
      {systemPath("/Library/Managed Preferences/" + machineUserName() + file), true},
      {systemPath("/Library/Managed Preferences" + file), true},
      {homeFolder() + "/Library/Preferences" + file, false},
      {systemPath("/Library/Preferences" + file), false},
  };
  for (const auto& [path, isForced] : places) {
    const Result<Value::Dictionary> values = readDictionary(path);
    if (!values && saysMissing(values.error())) continue;
    if (!values) return std::nullopt;  // it might hold a value that must win over the following ones
    if (const auto entry = values.value().find(key); entry != values.value().end()) {
      return Found{.value = entry->second, .isForced = isForced};
    }
  }
  return std::nullopt;
}

}  // namespace karno::platform
