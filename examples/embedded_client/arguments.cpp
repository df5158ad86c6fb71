#include "embedded_client/arguments.h"

#include <charconv>
#include <string_view>
#include <system_error>

namespace karno::client {

std::optional<std::int32_t> parentFromArguments(std::span<const std::string> arguments) {
  constexpr std::string_view kPrefix = "--parent ";
  if (arguments.size() != 1 || !arguments[0].starts_with(kPrefix)) return std::nullopt;
  const std::string_view digits = std::string_view(arguments[0]).substr(kPrefix.size());
  std::int32_t parent = 0;
  const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), parent);
  if (error != std::errc() || end != digits.data() + digits.size() || parent < 1) return std::nullopt;
  return parent;
}

}  // namespace karno::client
