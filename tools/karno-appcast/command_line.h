#pragma once
#include <iosfwd>
#include <span>
#include <string>
#include <string_view>

namespace karno::appcast {

// Does what the command line asks for; `arguments` are without the program's name. The result is the exit
// status.
int run(std::span<const std::string> arguments, std::string_view version, std::ostream& out,
        std::ostream& err);

}  // namespace karno::appcast
