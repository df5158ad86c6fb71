#pragma once
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <variant>

#include "karnoctl/verbs/usage_error.h"

namespace karno::karnoctl {

enum class ColourChoice { Auto, Always, Never };

struct LogOptions {
  std::optional<std::uint64_t> lines = 50;  // absent: all there are
  bool follow = false;
  ColourChoice colour = ColourChoice::Auto;
  bool help = false;
  bool operator==(const LogOptions&) const = default;
};

// Reads [--follow] [--lines N|all] [--color WHEN].
std::variant<LogOptions, UsageError> parseLogOptions(std::span<const std::string> arguments);

}  // namespace karno::karnoctl
