#pragma once
#include "platform/apple_scripts.h"
#include "platform/commands.h"

namespace karno::platform {

// Hands scripts to the machine root's osascript, which knows how to ask the Finder to move something to the
// Trash. What it says of an error goes to the console.
class LinuxAppleScripts final : public AppleScripts {
 public:
  explicit LinuxAppleScripts(Commands& commands) : commands_(commands) {}

  std::optional<std::string> execute(const std::string& source) override;

 private:
  Commands& commands_;
};

}  // namespace karno::platform
