#pragma once

// The names under which an updater keeps its settings, in the user defaults or in the bundle's Info.plist.
namespace karno::platform::updates {

inline constexpr const char* kAutomaticChecksKey = "SUEnableAutomaticChecks";
inline constexpr const char* kCheckIntervalKey = "SUScheduledCheckInterval";  // seconds
inline constexpr const char* kLastCheckKey = "SULastCheckTime";
inline constexpr const char* kSkippedVersionKey = "SUSkippedVersion";
inline constexpr const char* kHasLaunchedKey = "SUHasLaunchedBefore";
inline constexpr const char* kPublicKeyKey = "SUPublicEDKey";
inline constexpr const char* kFeedKey = "SUFeedURL";

}  // namespace karno::platform::updates
