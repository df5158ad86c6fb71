#pragma once
#include <mutex>

#include "platform/property_lists.h"
#include "platform/system_version.h"

namespace karno::platform {

// The version that the machine root claims, in SystemVersion.plist. Without a readable one no version is met,
// which is reported on the console log once.
class LinuxSystemVersion final : public SystemVersion {
 public:
  explicit LinuxSystemVersion(const PropertyLists& propertyLists) : propertyLists_(propertyLists) {}

  bool isAtLeast(int major, int minor, int patch) const override;

 private:
  const PropertyLists& propertyLists_;
  mutable std::once_flag reported_;
};

}  // namespace karno::platform
