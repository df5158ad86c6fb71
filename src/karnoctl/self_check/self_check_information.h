#pragma once
#include <optional>
#include <string>
#include <string_view>

#include "karnoctl/self_check/self_check_bundle.h"

namespace karno::karnoctl {

inline constexpr std::string_view kInformationFile = "Contents/Info.plist";

// Whether the launcher's own Info.plist says all that the launcher, its updater and the system need of it.
// Its entries, for those who go on with them; absent when it cannot be read.
std::optional<platform::Value::Dictionary> checkInformation(const CheckedBundle& bundle);

// The SUPublicEDKey of a build that was given none: its private half was thrown away when it was made.
std::string_view publicKeyOfNobody();

// The text under that key; absent when there is none, or an empty one.
std::optional<std::string> textIn(const platform::Value::Dictionary& information, std::string_view key);

// Whether `file` names that identifier; `cost` is what another one costs.
void checkIdentifier(const CheckedBundle& bundle, const std::string& file,
                     const platform::Value::Dictionary& information, std::string_view identifier,
                     std::string_view cost);

}  // namespace karno::karnoctl
