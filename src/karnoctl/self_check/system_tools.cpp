#include "karnoctl/self_check/system_tools.h"

#include "move/shell_scripts.h"

namespace karno::karnoctl {
namespace {

// By which a shell tells that a command may not be executed, or is not there.
constexpr int kCannotExecute = 126;
constexpr int kNotFound = 127;

}  // namespace

std::optional<ToolAnswer> askTool(platform::Commands& commands, std::string_view tool,
                                  const std::vector<std::string>& arguments) {
  std::string script(tool);
  for (const std::string& argument : arguments) script += " " + shellQuotedString(argument);
  // Most of what codesign and spctl tell goes to the standard error.
  script += " 2>&1";
  const auto run = commands.run({.executablePath = "/bin/sh", .arguments = {"-c", script}});
  if (!run || run.value().end.terminationReason != platform::TerminationReason::Exit) return std::nullopt;
  const int status = run.value().end.terminationStatus;
  if (status == kCannotExecute || status == kNotFound) return std::nullopt;
  return ToolAnswer{.status = status, .text = run.value().standardOutput};
}

}  // namespace karno::karnoctl
