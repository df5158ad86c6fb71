#pragma once
#include <string_view>

namespace karno::platform {

// The order that Text::compareNumerically promises. The same code on every system: how long a run of digits
// the systems' own comparisons can take differs, and here it may have any length.
int numericOrder(std::string_view a, std::string_view b);

}  // namespace karno::platform
