#pragma once
#include <optional>
#include <string>

namespace karno::platform {

// The platform's script object. Main thread only.
class AppleScripts {
 public:
  virtual ~AppleScripts() = default;

  // Runs the script to its end. Absent when it went well, else what the platform tells of the error, for a
  // log.
  virtual std::optional<std::string> execute(const std::string& source) = 0;
};

}  // namespace karno::platform
