#pragma once
#include <span>
#include <string>
#include <string_view>

namespace karno::installer {

// Does what the words after the program's name say, with the process's standard output and standard error.
// Gives the exit status; does not come back where it goes over into the program that opens the bundle again.
int run(std::span<const std::string> arguments, std::string_view version);

}  // namespace karno::installer
