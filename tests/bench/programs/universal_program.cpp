#include "universal_program.h"

#include <array>
#include <fstream>
#include <stdexcept>

namespace karno::bench {
namespace {

constexpr std::uint32_t kMagic = 0xCAFEBABE;
constexpr std::uint32_t kSlicesMax = 16;

// The header's numbers are big-endian.
std::uint32_t next(std::istream& file) {
  std::array<unsigned char, 4> bytes{};
  file.read(reinterpret_cast<char*>(bytes.data()), bytes.size());
  std::uint32_t number = 0;
  for (const unsigned char byte : bytes) number = number << 8U | byte;
  return number;
}

}  // namespace

std::uint32_t sizeOfSlice(const std::filesystem::path& program, Processor processor) {
  std::ifstream file(program, std::ios::binary);
  if (next(file) != kMagic) {
    throw std::runtime_error(program.string() + " is no universal program; scripts/cross-macos makes it");
  }
  const std::uint32_t slices = next(file);
  for (std::uint32_t slice = 0; slice < slices && slice < kSlicesMax; ++slice) {
    const std::uint32_t number = next(file);
    next(file);  // the kind of processor
    next(file);  // where the slice begins
    const std::uint32_t size = next(file);
    next(file);  // its alignment
    if (file && number == static_cast<std::uint32_t>(processor)) return size;
  }
  throw std::runtime_error(program.string() + " has no such slice");
}

}  // namespace karno::bench
