#pragma once
#include <optional>
#include <string>

#include "platform/value.h"

namespace karno::platform {

// Preferences that an administrator can force. Read-only, read afresh at every call, safe from any thread.
class ManagedPreferences {
 public:
  virtual ~ManagedPreferences() = default;

  // The value under the key in that application's domain, looked up in the platform's order: forced values
  // first, then the user's, then those for every user of the machine. Absent when nobody set it or a file
  // that might hold it cannot be read.
  virtual std::optional<Value> copyAppValue(const std::string& key, const std::string& applicationID) = 0;

  // Whether the value that copyAppValue() answers is a forced one.
  virtual bool isAppValueForced(const std::string& key, const std::string& applicationID) = 0;
};

}  // namespace karno::platform
