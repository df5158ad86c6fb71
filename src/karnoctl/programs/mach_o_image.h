#pragma once
#include <cstdint>

#include "karnoctl/programs/program_image.h"

namespace karno::karnoctl {

// Whether a file that begins with these four bytes, as a big-endian number, is meant to be one of macOS.
bool beginsMachO(std::uint32_t firstBytes);

// A program for one processor, or a universal one with a slice for each. Throws NoProgram.
ProgramImage machOImage(const ProgramBytes& file);

}  // namespace karno::karnoctl
