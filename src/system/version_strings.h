#pragma once
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace karno {

// Dotted version strings such as "4.4.1", compared component by component. A component counts by the integer
// it begins with, a missing one as 0, so "1.2" equals "1.2.0" and "1.2.3-beta" equals "1.2.3". A version that
// is absent compares as all zeros.
using VersionArgument = std::optional<std::string_view>;

// -1 when `version` is older than `other`, 0 when they are the same, 1 when it is newer.
std::int64_t compareToVersion(std::string_view version, VersionArgument other);

bool isOlderThanVersion(std::string_view version, VersionArgument other);
bool isNewerThanVersion(std::string_view version, VersionArgument other);
bool isEqualToVersion(std::string_view version, VersionArgument other);
bool isEqualOrOlderThanVersion(std::string_view version, VersionArgument other);
bool isEqualOrNewerThanVersion(std::string_view version, VersionArgument other);

// The first `count` components; absent when there are fewer, or when count is not positive.
std::optional<std::string> getMainVersionWithIntegerCount(std::string_view version, std::int64_t count);

// Whether `other` is newer than `version` and of the same main line, that is with the same first components.
bool needsToUpdateToVersion(std::string_view version, VersionArgument other,
                            std::int64_t mainVersionIntegerCount);

}  // namespace karno
