#include "karnoctl/explain/requirement_check.h"

#include <string_view>

#include "platform/platform.h"

namespace karno::karnoctl {
namespace {

bool isBefore(const std::string& version, const std::string& other) {
  return platform::host().text.compareNumerically(version, other) < 0;
}

// "12.9999.9999" is any release of macOS 12.
std::string withoutOpenEnd(std::string version) {
  constexpr std::string_view kAnyRelease = ".9999";
  while (version.ends_with(kAnyRelease)) version.resize(version.size() - kAnyRelease.size());
  return version;
}

}  // namespace

std::string objectionTo(const FuseRequirement& row, const SystemFacts& system) {
  if (!system.cpu || system.cpu->empty()) return "the processor is not known";
  if (*system.cpu != row.requiredCPU()) return "this Mac has " + *system.cpu;
  if (!system.macOS || system.macOS->empty()) return "the macOS version is not known";
  if (isBefore(*system.macOS, row.macMinVersion())) return "macOS " + *system.macOS + " is older";
  if (isBefore(row.macMaxVersion(), *system.macOS)) return "macOS " + *system.macOS + " is newer";
  if (!system.fuse) return "macFUSE is not installed";
  if (isBefore(*system.fuse, row.fuseVersion())) {
    return system.fuse->empty() ? "macFUSE tells no version" : "macFUSE " + *system.fuse + " is older";
  }
  return {};
}

std::string macOSRange(const FuseRequirement& row) {
  const bool hasLowest = row.macMinVersion() != "1.0.0";
  const std::string highest = withoutOpenEnd(row.macMaxVersion());
  const bool hasHighest = highest != "9999";
  if (hasLowest && hasHighest) return "macOS " + row.macMinVersion() + " to " + highest;
  if (hasLowest) return "macOS " + row.macMinVersion() + " or later";
  if (hasHighest) return "macOS " + highest + " or earlier";
  return "any macOS";
}

}  // namespace karno::karnoctl
