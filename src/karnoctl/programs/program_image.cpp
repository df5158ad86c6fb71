#include "karnoctl/programs/program_image.h"

#include <cstddef>
#include <sstream>

#include "karnoctl/programs/header_bytes.h"
#include "karnoctl/programs/program_formats.h"

namespace karno::karnoctl {
namespace {

// What the kernel starts in its place; it reads no more of the line either.
ProgramImage scriptImage(const platform::ReadableFile& file) {
  constexpr std::size_t kScriptLineBytesMax = 255;
  const auto begin = file.read(0, kScriptLineBytesMax);
  if (!begin) throw NoProgram(begin.error().localizedDescription());
  std::istringstream words(begin.value().substr(2, begin.value().find('\n') - 2));
  ProgramImage image;
  if (!(words >> image.interpreter)) throw NoProgram("it is a script that names no interpreter");
  return image;
}

ProgramImage imageOrThrow(const platform::ReadableFile& file) {
  constexpr std::uint32_t kScript = 0x2321;  // "#!"
  if (file.sizeInBytes() == 0) throw NoProgram("it is empty");
  const std::uint32_t firstBytes = HeaderBytes(file, 0, 4, ByteOrder::Big).u32(0);
  if (firstBytes >> 16U == kScript) return scriptImage(file);
  if (beginsMachO(firstBytes)) return machOImage(file);
  if (beginsELF(firstBytes)) return elfImage(file);
  throw NoProgram(kNoProgram);
}

platform::Error failure(const char* why) {
  constexpr std::int64_t kExecutableNotLoadable = 3584;  // NSExecutableNotLoadableError
  return platform::Error(std::string(platform::kCocoaErrorDomain), kExecutableNotLoadable,
                         {{std::string(platform::kLocalizedDescriptionKey), why}});
}

}  // namespace

platform::Result<ProgramImage> programImage(const platform::ReadableFile& file) {
  try {
    return imageOrThrow(file);
  } catch (const NoProgram& problem) {
    return failure(problem.what());
  }
}

platform::Result<ProgramImage> programAtPath(const platform::FileReading& files, const std::string& path) {
  const auto file = files.open(path);
  return file ? programImage(*file.value()) : file.error();
}

}  // namespace karno::karnoctl
