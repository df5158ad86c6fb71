#pragma once
#include <string>

#include "karnoctl/programs/program_image.h"
#include "platform/file_reading.h"

namespace karno::karnoctl {

// What the file at that path is as a program; see programImage().
platform::Result<ProgramImage> programAtPath(const platform::FileReading& files, const std::string& path);

}  // namespace karno::karnoctl
