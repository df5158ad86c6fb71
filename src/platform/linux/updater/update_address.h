#pragma once
#include <optional>
#include <string>

#include "platform/error.h"

namespace karno::platform::updates {

// Absent when an update may come from there: over https, or over plain http from this very machine where the
// bundle allows that.
std::optional<Error> refusalOfAddress(const std::string& url, bool allowsLoopback);

}  // namespace karno::platform::updates
