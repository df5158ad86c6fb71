#pragma once
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "platform/value.h"

namespace karno::platform {

// One user's persistent key and value store, possibly shared with other processes: a value written by another
// process is seen by the next read. Safe from any thread. A damaged store reads as empty; a write that cannot
// be stored is reported on the console log.
class UserDefaults {
 public:
  virtual ~UserDefaults() = default;

  virtual std::optional<Value> objectForKey(std::string_view key) const = 0;

  // The platform's plain boolean read, see plainBoolean().
  virtual bool boolForKey(std::string_view key) const = 0;

  virtual void setBool(bool value, std::string_view key) = 0;

  // Returns when everything set before is on disk, as far as it can be stored for now.
  virtual void synchronize() = 0;
};

class UserDefaultsStore {
 public:
  virtual ~UserDefaultsStore() = default;

  // The launcher's own defaults, named after its bundle identifier.
  virtual UserDefaults& standardUserDefaults() = 0;

  // A suite shared by several applications.
  virtual std::unique_ptr<UserDefaults> makeSuite(const std::string& suiteName) = 0;
};

}  // namespace karno::platform
