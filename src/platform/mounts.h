#pragma once
#include <optional>
#include <string>

namespace karno::platform {

struct MountInformation {
  std::string sourceDevice;  // such as "/dev/disk4s1"
  bool isRootFileSystem = false;
};

// The mounted file systems. Safe from any thread.
class Mounts {
 public:
  virtual ~Mounts() = default;

  // The mount that holds the path; absent when the path is not there or cannot be asked.
  virtual std::optional<MountInformation> informationOf(const std::string& path) const = 0;
};

}  // namespace karno::platform
