#include "platform/macos/managed_preferences.h"

#include "platform/cocoa/guarded.h"
#include "platform/cocoa/strings.h"
#include "platform/cocoa/values.h"
#include "platform/macos/core_foundation.h"

namespace karno::platform {

std::optional<Value> MacManagedPreferences::copyAppValue(const std::string& key,
                                                         const std::string& applicationID) {
  const objc::AutoreleasePool pool;
  const auto read = objc::guarded("reading a managed preference", [&] {
    const objc::Object name = objc::string(key);
    const objc::Object domain = objc::string(applicationID);
    const CFOwned value(CFPreferencesCopyAppValue(name.get(), domain.get()));
    return cocoa::valueOf(value.object());
  });
  return read ? read.value() : std::nullopt;
}

bool MacManagedPreferences::isAppValueForced(const std::string& key, const std::string& applicationID) {
  const objc::AutoreleasePool pool;
  const auto forced = objc::guarded("asking whether a preference is managed", [&] {
    const objc::Object name = objc::string(key);
    const objc::Object domain = objc::string(applicationID);
    return CFPreferencesAppValueIsForced(name.get(), domain.get()) != 0;
  });
  return forced && forced.value();
}

}  // namespace karno::platform
