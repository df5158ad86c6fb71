#pragma once
#include <optional>
#include <string>

#include "platform/error.h"
#include "platform/linux/preferences/unstored_changes.h"

namespace karno::platform {

// Changes these keys of a property-list file and keeps all others as the file has them now. The file is
// replaced in one step; a damaged one is set aside first, which is told on the console. The caller holds the
// file's lock. An error leaves the file as it is.
std::optional<Error> mergeIntoFile(const std::string& path, const Changes& changes);

}  // namespace karno::platform
