#include "platform/linux/managed_preferences.h"

#include "platform/linux/property_list_file.h"
#include "platform/posix/home.h"
#include "platform/system_path.h"

namespace karno::platform {

std::optional<Value> LinuxManagedPreferences::copyAppValue(const std::string& key,
                                                           const std::string& applicationID) {
  // A "/" would lead out of the preferences folders.
  if (applicationID.empty() || applicationID.find('/') != std::string::npos) return std::nullopt;

  const std::string file = "/" + applicationID + ".plist";
  const std::string paths[] = {
      systemPath("/Library/Managed Preferences/" + userName() + file),
      systemPath("/Library/Managed Preferences" + file),
      homeFolder() + "/Library/Preferences" + file,
      systemPath("/Library/Preferences" + file),
  };
  for (const std::string& path : paths) {
    const Result<Value::Dictionary> values = readDictionary(propertyLists_, path);
    if (!values && saysMissing(values.error())) continue;
    if (!values) return std::nullopt;  // it might hold a value that must win over the following ones
    if (const auto entry = values.value().find(key); entry != values.value().end()) return entry->second;
  }
  return std::nullopt;
}

}  // namespace karno::platform
