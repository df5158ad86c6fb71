#pragma once
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "platform/error.h"

namespace karno::karnoctl {

// The systems whose programs are told apart by their files: Mach-O and ELF.
enum class ProgramSystem { MacOS, Linux };

// The code for one processor in a program's file.
struct ProgramSlice {
  std::string processor;  // as "uname -m" prints it on a Mac: "x86_64", "arm64"; others have a name of ours
  bool isSigned = false;  // has a signature; nothing is said about whether it is a good one
  bool operator==(const ProgramSlice&) const = default;
};

struct ProgramImage {
  ProgramSystem system = ProgramSystem::MacOS;
  std::vector<ProgramSlice> slices = {};  // one or more, of all but a script
  std::string interpreter = {};           // of a script, which is for every system and processor; else empty
  bool operator==(const ProgramImage&) const = default;
};

// The bytes of a file: up to `bytesMax` from `offset` on, fewer only where it ends.
struct ProgramBytes {
  std::uint64_t sizeInBytes = 0;
  std::function<platform::Result<std::string>(std::uint64_t offset, std::size_t bytesMax)> read;
};

// What a file is as a program, by its headers alone, which may lie. The error's localised description says
// why it is none, to follow a colon: "its end is missing". Reads no more than a few hundred KiB.
platform::Result<ProgramImage> programImage(const ProgramBytes& file);

}  // namespace karno::karnoctl
