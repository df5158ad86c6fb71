#pragma once
#include <cstdio>
#include <optional>
#include <string>

namespace karno::platform {

// The next piece of a shell's output, in the form that ShellPipe::readPiece() promises: one fgets() into 4096
// bytes, as a C string.
std::optional<std::string> readPiece(std::FILE* stream);

}  // namespace karno::platform
