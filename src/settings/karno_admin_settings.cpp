#include "settings/karno_admin_settings.h"

#include <fmt/format.h>

#include "log/karno_log.h"
#include "platform/never_destroyed.h"
#include "platform/platform.h"

namespace karno {

KarnoAdminSettings& KarnoAdminSettings::instance() {
  static platform::NeverDestroyed<KarnoAdminSettings> settings;
  return *settings;
}

std::optional<platform::Value> KarnoAdminSettings::objectForKey(std::string_view key) const {
  std::optional<platform::Value> value =
      platform::host().managedPreferences.copyAppValue(std::string(key), std::string(applicationID()));
  if (value) KarnoLog::manager().logWarn(fmt::format("Object={}", value->description()));
  return value;
}

std::optional<std::string> KarnoAdminSettings::stringForKey(std::string_view key) const {
  const std::optional<platform::Value> value = objectForKey(key);
  const std::string* const text = value ? value->get<std::string>() : nullptr;
  return text != nullptr ? std::optional(*text) : std::nullopt;
}

bool KarnoAdminSettings::isValueSetForKey(std::string_view key) const {
  const std::optional<std::string> text = stringForKey(key);
  return text && !text->empty();
}

bool KarnoAdminSettings::boolForKey(std::string_view key, bool defaultValue) const {
  const std::optional<std::string> text = stringForKey(key);
  return text ? platform::stringTruth(*text) : defaultValue;
}

KarnoTristate KarnoAdminSettings::tristateForKey(std::string_view key) const {
  const std::optional<std::string> text = stringForKey(key);
  if (!text) return KarnoTristate::NotSet;
  return platform::stringTruth(*text) ? KarnoTristate::On : KarnoTristate::Off;
}

}  // namespace karno
