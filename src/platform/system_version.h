#pragma once

namespace karno::platform {

class SystemVersion {
 public:
  virtual ~SystemVersion() = default;

  // Whether the running macOS is this version or a later one. Safe from any thread.
  virtual bool isAtLeast(int major, int minor, int patch) const = 0;

  // The number that AppKit carries: 949 in macOS 10.5, 1187 in 10.8, 1894 in 10.15. Safe from any thread.
  virtual double appKitVersionNumber() const = 0;
};

}  // namespace karno::platform
