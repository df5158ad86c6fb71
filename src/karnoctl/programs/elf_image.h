#pragma once
#include <cstdint>

#include "karnoctl/programs/program_image.h"

namespace karno::karnoctl {

// Whether a file that begins with these four bytes, as a big-endian number, is meant to be one of Linux.
bool beginsELF(std::uint32_t firstBytes);

// Throws NoProgram.
ProgramImage elfImage(const ProgramBytes& file);

}  // namespace karno::karnoctl
