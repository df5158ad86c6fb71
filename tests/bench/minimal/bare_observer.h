#pragma once
#include <string_view>

namespace karno::bench {

// As long as the launcher's own, which is compared on the way.
inline constexpr std::string_view kBareObserverObject = "it.vantul.Karno.BareObserverNotification";

}  // namespace karno::bench
