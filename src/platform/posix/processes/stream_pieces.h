#pragma once
#include <cstdio>
#include <optional>
#include <string>

namespace karno::platform {

// The next piece of a shell's output, in the form that ShellPipe::readPiece() promises: what one fgets() into
// 4096 bytes gives, as a C string. A signal that interrupts the wait loses nothing.
std::optional<std::string> readPiece(std::FILE* stream);

}  // namespace karno::platform
