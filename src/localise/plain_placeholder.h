#pragma once
#include <optional>
#include <string>
#include <string_view>

namespace karno {

// Fills the placeholders of that name without an expression, which takes a tenth of the time, and answers
// what the expression would. Absent where only the expression knows: a key of other characters than ASCII
// letters, digits and underscores, a value with "$" or a backslash, and white space beyond ASCII in a
// placeholder. The texts are UTF-8.
std::optional<std::string> textWithPlainPlaceholdersFilled(std::string_view key, std::string_view value,
                                                           std::string_view text);

}  // namespace karno
