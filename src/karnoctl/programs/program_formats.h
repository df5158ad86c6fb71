#pragma once
#include <cstdint>

#include "karnoctl/programs/program_image.h"

// The formats of programs. What begins a file is its first four bytes, as a big-endian number; the readers
// throw NoProgram.
namespace karno::karnoctl {

// Whether the file is meant to be a program of Linux.
bool beginsELF(std::uint32_t firstBytes);
ProgramImage elfImage(const platform::ReadableFile& file);

// Whether it is meant to be one of macOS: for one processor, or universal with a slice for each.
bool beginsMachO(std::uint32_t firstBytes);
ProgramImage machOImage(const platform::ReadableFile& file);

}  // namespace karno::karnoctl
