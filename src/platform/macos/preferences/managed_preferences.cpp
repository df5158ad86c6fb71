#include "platform/macos/preferences/managed_preferences.h"

#include "platform/cocoa/runtime/strings.h"
#include "platform/cocoa/runtime/values.h"
#include "platform/macos/foundation/core_foundation.h"
#include "platform/macos/foundation/guarded_answer.h"

namespace karno::platform {

std::optional<Value> MacManagedPreferences::copyAppValue(const std::string& key,
                                                         const std::string& applicationID) {
  const objc::AutoreleasePool pool;
  return guardedAnswer("reading a managed preference", std::optional<Value>(), [&] {
    const objc::Object name = objc::string(key);
    const objc::Object domain = objc::string(applicationID);
    const CFOwned value(CFPreferencesCopyAppValue(name.get(), domain.get()));
    return cocoa::valueOf(value.object());
  });
}

bool MacManagedPreferences::isAppValueForced(const std::string& key, const std::string& applicationID) {
  const objc::AutoreleasePool pool;
  return guardedAnswer("asking whether a preference is managed", false, [&] {
    const objc::Object name = objc::string(key);
    const objc::Object domain = objc::string(applicationID);
    return CFPreferencesAppValueIsForced(name.get(), domain.get()) != 0;
  });
}

}  // namespace karno::platform
