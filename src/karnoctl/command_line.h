#pragma once
#include <span>
#include <string>
#include <string_view>

#include "karnoctl/verbs/verb.h"

namespace karno::karnoctl {

// Does what the command line asks for; `arguments` are without the program's name. The result is the exit
// status.
int run(std::span<const std::string> arguments, std::string_view version, Context& context);

}  // namespace karno::karnoctl
