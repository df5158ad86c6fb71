#pragma once
#include <functional>
#include <optional>
#include <string>

#include "platform/error.h"

namespace karno::platform {

// Makes a copy appear at `to` whole or not at all, also when the process or the machine ends meanwhile.
// `copy` makes it under the hidden name that it is given, in the same folder; then it is brought to the disk
// and gets its name, which nothing may have yet (EEXIST). What is left of a copy that fails is taken away,
// and what an earlier one left behind when its process was ended.
std::optional<Error> copyWhole(const std::string& to,
                               const std::function<std::optional<Error>(const std::string& hidden)>& copy);

}  // namespace karno::platform
