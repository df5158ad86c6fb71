#pragma once
#include <optional>
#include <string>

#include "system/fuse_requirement.h"

namespace karno::karnoctl {

// What the table of macFUSE requirements is asked with; absent where it cannot be learnt.
struct SystemFacts {
  std::optional<std::string> cpu = std::nullopt;
  std::optional<std::string> macOS = std::nullopt;
  std::optional<std::string> fuse = std::nullopt;
};

// Why the system does not meet the row; empty when it does.
std::string objectionTo(const FuseRequirement& row, const SystemFacts& system);

// The macOS versions of the row: "any macOS", "macOS 13.0.0 or later", "macOS 12 or earlier".
std::string macOSRange(const FuseRequirement& row);

}  // namespace karno::karnoctl
