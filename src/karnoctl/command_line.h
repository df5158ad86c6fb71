#pragma once
#include <span>
#include <string>
#include <string_view>

#include "command_line/program.h"
#include "karnoctl/verbs/context.h"

namespace karno::karnoctl {

// karnoctl with all its verbs. The context outlives it.
command_line::Program program(std::string_view version, Context& context);

// Does what the command line asks for; `arguments` are without the program's name. The result is the exit
// status.
int run(std::span<const std::string> arguments, std::string_view version, Context& context);

}  // namespace karno::karnoctl
