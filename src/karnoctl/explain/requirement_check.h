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

// What would do for the processor and macOS: the lowest macFUSE; where none does, the systems on which one
// would, for people. Both are absent where processor or macOS cannot be learnt.
struct FuseAdvice {
  std::optional<std::string> fuse = std::nullopt;
  std::optional<std::string> macOS = std::nullopt;
};

FuseAdvice fuseAdvice(const SystemFacts& system);

// The ends of the row's macOS versions, "13.0.0" and "12"; absent where it is open.
std::optional<std::string> lowestMacOS(const FuseRequirement& row);
std::optional<std::string> highestMacOS(const FuseRequirement& row);

// The macOS versions of the row: "any macOS", "macOS 13.0.0 or later", "macOS 12 or earlier".
std::string macOSRange(const FuseRequirement& row);

}  // namespace karno::karnoctl
