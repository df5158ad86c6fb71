#pragma once
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace karno::command_line {

// The candidate that someone who typed `word` most likely meant: the one with the fewest letters to change,
// add or leave out, the first of several. Absent when none is near, that is within a third of its letters.
std::optional<std::string_view> closestWord(std::string_view word,
                                            std::span<const std::string_view> candidates);

// "; did you mean 'x'?" ready to follow an error text, or nothing.
std::string suggestion(std::string_view word, std::span<const std::string_view> candidates);

}  // namespace karno::command_line
