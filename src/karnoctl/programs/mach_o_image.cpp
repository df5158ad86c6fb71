#include "karnoctl/programs/program_formats.h"

#include <fmt/format.h>

#include "karnoctl/programs/header_bytes.h"

namespace karno::karnoctl {
namespace {

// <mach-o/loader.h> and <mach-o/fat.h>
constexpr std::uint32_t kMagic64 = 0xfeedfacf;
constexpr std::uint32_t kMagic64Swapped = 0xcffaedfe;
constexpr std::uint32_t kMagic32 = 0xfeedface;
constexpr std::uint32_t kMagic32Swapped = 0xcefaedfe;
constexpr std::uint32_t kFatMagic = 0xcafebabe;    // always big-endian
constexpr std::uint32_t kFatMagic64 = 0xcafebabf;  // with offsets of 64 bits

constexpr std::uint32_t kProcessorX86 = 0x01000007;
constexpr std::uint32_t kProcessorArm = 0x0100000c;
constexpr std::uint32_t kMachExecutable = 2;
constexpr std::uint32_t kSegment64 = 0x19;
constexpr std::uint32_t kCodeSignature = 0x1d;

constexpr std::size_t kMachHeaderBytes = 32;
constexpr std::size_t kFatHeaderBytes = 8;
constexpr std::size_t kSegmentBytes = 72;
constexpr std::size_t kSignatureBytes = 16;

// A universal program has a handful of slices. A class file of Java begins with the same bytes, and has the
// number of its format, 45 or more, in the place of their count.
constexpr std::uint32_t kSlicesMax = 16;
constexpr std::uint32_t kCommandBytesMax = 256 * 1024;

std::string processorNamed(std::uint32_t type) {
  if (type == kProcessorX86) return "x86_64";
  if (type == kProcessorArm) return "arm64";
  return fmt::format("processor {:#x}", type);
}

std::uint32_t firstBytesAt(const platform::ReadableFile& file, std::uint64_t offset) {
  return HeaderBytes(file, offset, 4, ByteOrder::Big).u32(0);
}

// Whether there is a signature among the commands. What they point at must lie within the slice.
bool findSignature(const HeaderBytes& commands, std::uint32_t count, std::uint64_t sliceBytes) {
  bool isSigned = false;
  std::size_t at = 0;
  for (std::uint32_t index = 0; index < count; ++index) {
    const std::uint32_t command = commands.u32(at);
    const std::uint32_t size = commands.u32(at + 4);
    if (size < 8 || size > commands.sizeInBytes() - at) throw NoProgram(kDamagedHeaders);
    if (command == kSegment64 && size >= kSegmentBytes) {
      requireWithin(commands.u64(at + 40), commands.u64(at + 48), sliceBytes);
    }
    if (command == kCodeSignature && size >= kSignatureBytes) {
      requireWithin(commands.u32(at + 8), commands.u32(at + 12), sliceBytes);
      isSigned = commands.u32(at + 12) > 0;
    }
    at += size;
  }
  return isSigned;
}

ProgramSlice sliceAt(const platform::ReadableFile& file, std::uint64_t offset, std::uint64_t sizeInBytes) {
  requireWithin(offset, sizeInBytes, file.sizeInBytes());
  requireWithin(0, kMachHeaderBytes, sizeInBytes);
  const std::uint32_t magic = firstBytesAt(file, offset);
  if (magic == kMagic32 || magic == kMagic32Swapped) throw NoProgram("it is for 32-bit processors");
  if (magic != kMagic64 && magic != kMagic64Swapped) throw NoProgram("one of its slices is no program");

  const ByteOrder order = magic == kMagic64 ? ByteOrder::Big : ByteOrder::Little;
  const HeaderBytes header(file, offset, kMachHeaderBytes, order);
  if (header.u32(12) != kMachExecutable) throw NoProgram("it is a library or an object file");
  const std::uint32_t commandBytes = header.u32(20);
  if (commandBytes > kCommandBytesMax) throw NoProgram(kDamagedHeaders);
  requireWithin(kMachHeaderBytes, commandBytes, sizeInBytes);

  const HeaderBytes commands(file, offset + kMachHeaderBytes, commandBytes, order);
  return {.processor = processorNamed(header.u32(4)),
          .isSigned = findSignature(commands, header.u32(16), sizeInBytes)};
}

std::vector<ProgramSlice> slicesOfUniversal(const platform::ReadableFile& file, bool isWide) {
  const std::uint32_t count = HeaderBytes(file, 0, kFatHeaderBytes, ByteOrder::Big).u32(4);
  if (count == 0) throw NoProgram("it has no code for any processor");
  if (count > kSlicesMax) throw NoProgram(kNoProgram);
  const std::size_t entryBytes = isWide ? 32 : 20;
  const HeaderBytes entries(file, kFatHeaderBytes, count * entryBytes, ByteOrder::Big);
  std::vector<ProgramSlice> slices;
  for (std::size_t at = 0; at < entries.sizeInBytes(); at += entryBytes) {
    const std::uint64_t offset = isWide ? entries.u64(at + 8) : entries.u32(at + 8);
    const std::uint64_t size = isWide ? entries.u64(at + 16) : entries.u32(at + 12);
    slices.push_back(sliceAt(file, offset, size));
    // The system picks by what the list says.
    if (slices.back().processor != processorNamed(entries.u32(at))) {
      throw NoProgram("one of its slices is for another processor than it says");
    }
  }
  return slices;
}

}  // namespace

bool beginsMachO(std::uint32_t firstBytes) {
  return firstBytes == kMagic64 || firstBytes == kMagic64Swapped || firstBytes == kMagic32 ||
         firstBytes == kMagic32Swapped || firstBytes == kFatMagic || firstBytes == kFatMagic64;
}

ProgramImage machOImage(const platform::ReadableFile& file) {
  const std::uint32_t magic = firstBytesAt(file, 0);
  if (magic == kFatMagic || magic == kFatMagic64) {
    return {.system = ProgramSystem::MacOS, .slices = slicesOfUniversal(file, magic == kFatMagic64)};
  }
  return {.system = ProgramSystem::MacOS, .slices = {sliceAt(file, 0, file.sizeInBytes())}};
}

}  // namespace karno::karnoctl
