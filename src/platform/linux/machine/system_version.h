#pragma once
#include <array>
#include <mutex>
#include <optional>

#include "platform/system_version.h"

namespace karno::platform {

// The version that the machine root claims, in SystemVersion.plist. Without a readable one no version is met,
// which is reported on the console log once.
class LinuxSystemVersion final : public SystemVersion {
 public:
  bool isAtLeast(int major, int minor, int patch) const override;

  // That of the first release of the macOS that the machine claims; the last one known for all later ones,
  // and 0 for none.
  double appKitVersionNumber() const override;

 private:
  std::optional<std::array<int, 3>> version() const;

  mutable std::once_flag reported_;
};

}  // namespace karno::platform
