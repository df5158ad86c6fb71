#pragma once
#include <cstdint>
#include <filesystem>

namespace karno::bench {

// As a universal Mach-O file numbers them.
enum class Processor : std::uint32_t { Intel = 0x01000007, Arm = 0x0100000C };

// The bytes of one processor's program in a universal one. Throws when there is none.
std::uint32_t sizeOfSlice(const std::filesystem::path& program, Processor processor);

}  // namespace karno::bench
