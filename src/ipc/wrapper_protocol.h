#pragma once
#include <array>
#include <string_view>

namespace karno {

// What the embedded application and the launcher agree on. The embedded application posts one distributed
// notification with this name and this object; its user information holds the message and, with
// kAppIsTerminatingAbnormally, the reason. The launcher never answers.
inline constexpr std::string_view kWrapperNotificationName = "it.vantul.Karno.KarnoWrapperNotification";
inline constexpr std::string_view kWrapperNotificationObject = "it.vantul.Karno.KarnoWrapperNotification";
inline constexpr std::string_view kWrapperMessageKey = "message";
inline constexpr std::string_view kWrapperReasonKey = "reason";

inline constexpr std::string_view kCheckForUpdates = "check-for-updates";
inline constexpr std::string_view kEnableAutomaticUpdates = "enable-automatic-updates";
inline constexpr std::string_view kDisableAutomaticUpdates = "disable-automatic-updates";
inline constexpr std::string_view kUserSelectedQuit = "user-selected-quit";
inline constexpr std::string_view kAppIsTerminating = "app-is-terminating";
inline constexpr std::string_view kAppIsTerminatingAbnormally = "app-is-terminating-abnormally";
inline constexpr std::string_view kAppNeedsRestart = "app-needs-restart";
inline constexpr std::string_view kRestartWrapperWithFuse = "restart-wrapper-with-fuse";
inline constexpr std::string_view kRestartWrapperWithFileProvider = "restart-wrapper-with-file-provider";
inline constexpr std::string_view kRestartWrapper = "restart-wrapper";

// All ten, in the order in which the launcher compares them.
inline constexpr std::array kWrapperMessages = {
    kCheckForUpdates,  kEnableAutomaticUpdates, kDisableAutomaticUpdates,
    kUserSelectedQuit, kAppIsTerminating,       kAppIsTerminatingAbnormally,
    kAppNeedsRestart,  kRestartWrapperWithFuse, kRestartWrapperWithFileProvider,
    kRestartWrapper,
};

}  // namespace karno
