#pragma once
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/commands.h"

namespace karno::karnoctl {

// How a tool of the system ended, and all that it printed, on either output.
struct ToolAnswer {
  int status = 0;
  std::string text;
};

// Runs the tool, named by its path on a Mac, and waits for it. Absent when it is not there, cannot be started
// or is killed.
std::optional<ToolAnswer> askTool(platform::Commands& commands, std::string_view tool,
                                  const std::vector<std::string>& arguments);

}  // namespace karno::karnoctl
