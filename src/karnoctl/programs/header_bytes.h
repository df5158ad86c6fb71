#pragma once
#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <string>

#include "karnoctl/programs/program_image.h"

namespace karno::karnoctl {

// Why a file is no program. Thrown by the readers of headers alone, and caught where they are called.
class NoProgram : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

inline constexpr const char* kCutOff = "its end is missing";
inline constexpr const char* kDamagedHeaders = "its headers are damaged";
inline constexpr const char* kNoProgram = "its first bytes are those of no program";

enum class ByteOrder { Little, Big };

// A piece of a file with numbers in one byte order. What lies behind its end throws NoProgram.
class HeaderBytes {
 public:
  // Reads that piece. NoProgram when the file ends before it does, or cannot be read.
  HeaderBytes(const platform::ReadableFile& file, std::uint64_t offset, std::size_t sizeInBytes,
              ByteOrder order);

  std::size_t sizeInBytes() const { return bytes_.size(); }
  std::uint16_t u16(std::size_t offset) const { return static_cast<std::uint16_t>(number(offset, 2)); }
  std::uint32_t u32(std::size_t offset) const { return static_cast<std::uint32_t>(number(offset, 4)); }
  std::uint64_t u64(std::size_t offset) const { return number(offset, 8); }

 private:
  std::uint64_t number(std::size_t offset, std::size_t size) const;

  std::string bytes_;
  ByteOrder order_;
};

// NoProgram unless `size` bytes from `offset` on lie within the first `available`.
void requireWithin(std::uint64_t offset, std::uint64_t size, std::uint64_t available);

}  // namespace karno::karnoctl
