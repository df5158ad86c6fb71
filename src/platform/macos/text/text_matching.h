#pragma once
#include <string_view>

namespace karno::platform::foundation {

// Text's operations of the same names, by Foundation. What it raises counts as no match and is written to the
// console log. Any thread.
bool isEqualCaseInsensitive(std::string_view a, std::string_view b);
bool containsMatch(std::string_view pattern, std::string_view text, bool ignoreCase);

}  // namespace karno::platform::foundation
