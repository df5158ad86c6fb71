#include "karnoctl/programs/program_formats.h"

#include <fmt/format.h>

#include "karnoctl/programs/header_bytes.h"

namespace karno::karnoctl {
namespace {

// <elf.h>, which a Mac does not have.
constexpr std::uint32_t kMagic = 0x7f454c46;
constexpr std::size_t kElfHeaderBytes = 64;
constexpr std::size_t kEntryBytes = 56;
constexpr std::uint16_t kElfExecutable = 2;
constexpr std::uint16_t kShared = 3;  // and executables that can be loaded anywhere
constexpr std::uint32_t kLoad = 1;
constexpr std::uint16_t kEntriesMax = 256;

std::string processorNamed(std::uint16_t machine) {
  switch (machine) {
    case 3:
      return "i386";
    case 40:
      return "arm";
    case 62:
      return "x86_64";
    case 183:
      return "arm64";
    default:
      return fmt::format("processor {}", machine);
  }
}

// What is to be loaded must be there.
void requireSegments(const platform::ReadableFile& file, const HeaderBytes& header, ByteOrder order) {
  const std::uint16_t count = header.u16(56);
  if (header.u16(54) != kEntryBytes || count == 0 || count > kEntriesMax) {
    throw NoProgram(kDamagedHeaders);
  }
  const HeaderBytes entries(file, header.u64(32), count * kEntryBytes, order);
  for (std::size_t at = 0; at < entries.sizeInBytes(); at += kEntryBytes) {
    if (entries.u32(at) == kLoad)
      requireWithin(entries.u64(at + 8), entries.u64(at + 32), file.sizeInBytes());
  }
}

}  // namespace

bool beginsELF(std::uint32_t firstBytes) { return firstBytes == kMagic; }

ProgramImage elfImage(const platform::ReadableFile& file) {
  // The class, then the byte order, one byte each.
  const std::uint16_t kind = HeaderBytes(file, 4, 2, ByteOrder::Big).u16(0);
  if (kind == 0x0101 || kind == 0x0102) throw NoProgram("it is for 32-bit processors");
  if (kind != 0x0201 && kind != 0x0202) throw NoProgram(kDamagedHeaders);
  const ByteOrder order = kind == 0x0202 ? ByteOrder::Big : ByteOrder::Little;
  const HeaderBytes header(file, 0, kElfHeaderBytes, order);
  const std::uint16_t type = header.u16(16);
  if (type != kElfExecutable && type != kShared) throw NoProgram("it is an object file");
  requireSegments(file, header, order);
  // The list of sections, which most files end with.
  requireWithin(header.u64(40), std::uint64_t{header.u16(58)} * header.u16(60), file.sizeInBytes());
  return {.system = ProgramSystem::Linux,
          .slices = {{.processor = processorNamed(header.u16(18)), .isSigned = false}}};
}

}  // namespace karno::karnoctl
