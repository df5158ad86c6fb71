#pragma once
#include "platform/apple_scripts.h"

namespace karno::platform {

// NSAppleScript.
class FoundationAppleScripts final : public AppleScripts {
 public:
  std::optional<std::string> execute(const std::string& source) override;
};

}  // namespace karno::platform
