#pragma once
#include "platform/cocoa/runtime/objc.h"
#include "platform/system_version.h"

namespace karno::platform {

struct OperatingSystemVersion {  // NSOperatingSystemVersion
  objc::Integer major;
  objc::Integer minor;
  objc::Integer patch;
};

// The running macOS, as NSProcessInfo knows it. When that raises an exception, which is written to the
// console log, the system counts as an earlier one.
class FoundationSystemVersion final : public SystemVersion {
 public:
  bool isAtLeast(int major, int minor, int patch) const override;
  double appKitVersionNumber() const override;
};

}  // namespace karno::platform
