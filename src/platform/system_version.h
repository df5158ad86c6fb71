#pragma once

namespace karno::platform {

class SystemVersion {
 public:
  virtual ~SystemVersion() = default;

  // Whether the running macOS is this version or a later one. Safe from any thread.
  virtual bool isAtLeast(int major, int minor, int patch) const = 0;
};

}  // namespace karno::platform
