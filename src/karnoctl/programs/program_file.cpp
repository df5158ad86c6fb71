#include "karnoctl/programs/program_file.h"

namespace karno::karnoctl {

platform::Result<ProgramImage> programAtPath(const platform::FileReading& files, const std::string& path) {
  const auto file = files.open(path);
  if (!file) return file.error();
  const platform::ReadableFile& open = *file.value();
  return programImage(
      {.sizeInBytes = open.sizeInBytes(),
       .read = [&open](std::uint64_t offset, std::size_t bytesMax) { return open.read(offset, bytesMax); }});
}

}  // namespace karno::karnoctl
