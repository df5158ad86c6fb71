#pragma once
#include <optional>
#include <string>

namespace karno::appcast {

// The folder of the git checkout that a new file of this path would lie in; absent: in none.
std::optional<std::string> checkoutAround(const std::string& path);

}  // namespace karno::appcast
