#include "settings/karno_settings.h"

#include "platform/platform.h"
#include "settings/karno_admin_settings.h"
#include "util/karno_class_utils.h"

namespace karno {

KarnoSettings& KarnoSettings::instance() {
  static platform::NeverDestroyed<KarnoSettings> settings;
  return *settings;
}

KarnoSettings::KarnoSettings()
    : userDefaults_(platform::host().userDefaults.makeSuite(std::string(suiteName()))) {}

bool KarnoSettings::useFileProviderVerified() const {
  return userDefaults_->boolForKey("useFileProviderVerified");
}

void KarnoSettings::setUseFileProviderVerified(bool verified) {
  userDefaults_->setBool(verified, "useFileProviderVerified");
}

bool KarnoSettings::useFileProvider() const {
  switch (KarnoAdminSettings::instance().useFileProvider()) {
    case KarnoTristate::On:
      return true;
    case KarnoTristate::Off:
      return false;
    case KarnoTristate::NotSet:
      break;
  }
  return userDefaults_->boolForKey("useFileProvider");
}

void KarnoSettings::setUseFileProvider(bool use) { userDefaults_->setBool(use, "useFileProvider"); }

bool KarnoSettings::boolForKey(std::string_view key, bool defaultValue) const {
  const std::optional<platform::Value> value = userDefaults_->objectForKey(key);
  if (KarnoClassUtils::isKindOfClassForItem(value, ValueClass::String)) {
    return platform::stringTruth(*value->get<std::string>());
  }
  if (KarnoClassUtils::isKindOfClassForItem(value, ValueClass::Number)) return platform::plainBoolean(value);
  return defaultValue;
}

}  // namespace karno
