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

bool isForSystem(const FuseRequirement& row, const SystemFacts& system) {
  return *system.cpu == row.requiredCPU() && !isBefore(*system.macOS, row.macMinVersion()) &&
         !isBefore(row.macMaxVersion(), *system.macOS);
}

// The first release of macOS 13 calls itself 13.0.
std::string sortingOf(const FuseRequirement& row, const std::string& macOS) {
  if (macOS + ".0" != row.macMinVersion()) return {};
  return ", and " + macOS + " counts as older than " + row.macMinVersion();
}

}  // namespace

FuseAdvice fuseAdvice(const SystemFacts& system) {
  if (!system.cpu || system.cpu->empty() || !system.macOS || system.macOS->empty()) return {};
  std::string systems;
  std::string sorting;
  for (const FuseRequirement& row : FuseRequirement::allOptions()) {
    if (isForSystem(row, system)) return {.fuse = row.fuseVersion()};
    if (row.requiredCPU() != *system.cpu) continue;
    systems += (systems.empty() ? "" : ", or on ") + macOSRange(row);
    sorting += sortingOf(row, *system.macOS);
  }
  return {.macOS = systems.empty() ? "no macOS with " + *system.cpu : systems + sorting};
}

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

std::optional<std::string> lowestMacOS(const FuseRequirement& row) {
  return row.macMinVersion() == "1.0.0" ? std::nullopt : std::optional(row.macMinVersion());
}

std::optional<std::string> highestMacOS(const FuseRequirement& row) {
  const std::string highest = withoutOpenEnd(row.macMaxVersion());
  return highest == "9999" ? std::nullopt : std::optional(highest);
}

std::string macOSRange(const FuseRequirement& row) {
  const auto lowest = lowestMacOS(row);
  const auto highest = highestMacOS(row);
  if (lowest && highest) return "macOS " + *lowest + " to " + *highest;
  if (lowest) return "macOS " + *lowest + " or later";
  return highest ? "macOS " + *highest + " or earlier" : "any macOS";
}

}  // namespace karno::karnoctl
