#pragma once
#include <optional>
#include <string>

#include "platform/error.h"

namespace karno::platform::updates {

// Absent when an update may come from there, which is over https only.
std::optional<Error> refusalOfAddress(const std::string& url);

}  // namespace karno::platform::updates
