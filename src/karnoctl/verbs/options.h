#pragma once
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "karnoctl/verbs/usage_error.h"
#include "karnoctl/verbs/verb.h"

namespace karno::karnoctl {

// The words with "--name=value" taken apart into "--name" and "value" for the options named. A word behind
// such an option is its value, whatever it looks like.
std::vector<std::string> withValuesApart(std::span<const std::string> arguments,
                                         std::span<const std::string_view> optionsWithValue);

// Answers for a verb that takes nothing but "--help": the exit status when that settles the matter.
std::optional<int> settledByHelpOrUsage(std::string_view verb, std::span<const std::string> arguments,
                                        Context& context);

}  // namespace karno::karnoctl
