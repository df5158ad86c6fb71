#pragma once
#include <string_view>

namespace karno::platform {

// The order that Text::compareNumerically promises. The same code on every system: how long a run of digits
// the systems' own comparisons can take differs, and here it may have any length.
int numericOrder(std::string_view a, std::string_view b);

// Takes the run of decimal digits off the front, and leaves the zeros in front of its value out: none are 0.
std::string_view takeNumber(std::string_view& text);

// Negative, 0 or positive, by the value of two numbers that were taken so.
int orderOfNumbers(std::string_view a, std::string_view b);

}  // namespace karno::platform
