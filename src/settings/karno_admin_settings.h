#pragma once
#include <optional>
#include <string>
#include <string_view>

#include "platform/value.h"
#include "settings/karno_tristate.h"

namespace karno {

// What an administrator forces through managed preferences. Read-only and never cached: a change is seen by
// the next read. Only strings count; a boolean or a number stored under a key reads as if nothing were there.
// Safe from any thread.
class KarnoAdminSettings {
 public:
  static KarnoAdminSettings& instance();

  static constexpr std::string_view applicationID() { return "it.vantul.KarnoAdmin"; }

  KarnoTristate updatesEnabled() const { return tristateForKey("UPDATES_ENABLED"); }
  KarnoTristate useFileProvider() const { return tristateForKey("USE_FILE_PROVIDER"); }

  // Every value found is logged at WARN level, whatever its type: the record of what the administrator
  // forced.
  std::optional<platform::Value> objectForKey(std::string_view key) const;

  std::optional<std::string> stringForKey(std::string_view key) const;
  bool isValueSetForKey(std::string_view key) const;
  bool boolForKey(std::string_view key, bool defaultValue) const;
  KarnoTristate tristateForKey(std::string_view key) const;
};

}  // namespace karno
