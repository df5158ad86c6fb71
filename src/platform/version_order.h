#pragma once
#include <array>
#include <compare>
#include <string_view>

namespace karno::platform {

// The order of bundle versions as an updater sees it: runs of digits by their value, whatever their length,
// runs of letters by their text; a missing number counts as zero, so "2.1" equals "2.1.0", and a word stands
// before what has none: "1.0a3" is older than "1.0". Other characters only part the runs.
std::strong_ordering compareVersions(std::string_view one, std::string_view other);

// Major, minor and patch of a system's version; what is missing or no number is 0, and no number is larger
// than the largest int.
std::array<int, 3> versionParts(std::string_view version);

}  // namespace karno::platform
