#pragma once
#include <optional>
#include <span>
#include <string>
#include <variant>

#include "karnoctl/verbs/usage_error.h"

namespace karno::karnoctl {

struct PostOptions {
  std::string message = {};
  std::optional<std::string> reason = std::nullopt;
  bool help = false;
  bool operator==(const PostOptions&) const = default;
};

// Reads MESSAGE [--reason TEXT]; the order is free, and "--" ends the options. Only a message that the
// launcher knows is accepted.
std::variant<PostOptions, UsageError> parsePostOptions(std::span<const std::string> arguments);

}  // namespace karno::karnoctl
