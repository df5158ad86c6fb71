#pragma once
#include <cstdint>
#include <string>
#include <vector>

#include "platform/error.h"
#include "platform/file_reading.h"

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

// What a file is as a program, by its headers alone, which may lie. The error's localised description says
// why it is none, to follow a colon: "its end is missing". Reads no more than a few hundred KiB.
platform::Result<ProgramImage> programImage(const platform::ReadableFile& file);

// The same of the file at that path.
platform::Result<ProgramImage> programAtPath(const platform::FileReading& files, const std::string& path);

}  // namespace karno::karnoctl
