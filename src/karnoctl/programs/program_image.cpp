#include "karnoctl/programs/program_image.h"

#include "karnoctl/programs/elf_image.h"
#include "karnoctl/programs/header_bytes.h"
#include "karnoctl/programs/mach_o_image.h"

namespace karno::karnoctl {
namespace {

ProgramImage imageOrThrow(const ProgramBytes& file) {
  if (file.sizeInBytes == 0) throw NoProgram("it is empty");
  const std::uint32_t firstBytes = HeaderBytes(file, 0, 4, ByteOrder::Big).u32(0);
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

platform::Result<ProgramImage> programImage(const ProgramBytes& file) {
  try {
    return imageOrThrow(file);
  } catch (const NoProgram& problem) {
    return failure(problem.what());
  }
}

}  // namespace karno::karnoctl
