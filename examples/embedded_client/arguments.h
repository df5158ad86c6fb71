#pragma once
#include <cstdint>
#include <optional>
#include <span>
#include <string>

namespace karno::client {

// The launcher's process identifier from the client's arguments, the program path left out. There must be
// exactly one, "--parent 4711": a single word with a blank in it. Absent for anything else.
std::optional<std::int32_t> parentFromArguments(std::span<const std::string> arguments);

}  // namespace karno::client
