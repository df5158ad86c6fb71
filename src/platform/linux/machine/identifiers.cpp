#include "platform/linux/machine/identifiers.h"

#include <fmt/format.h>

#include <cstdint>
#include <random>

namespace karno::platform {

std::string RandomIdentifiers::makeUUID() {
  std::random_device random;
  const std::uint32_t first = random();
  const std::uint32_t second = (random() & 0xFFFF0FFFU) | 0x00004000U;  // version 4
  const std::uint32_t third = (random() & 0x3FFFFFFFU) | 0x80000000U;   // variant 1
  const std::uint32_t fourth = random();
  return fmt::format("{:08X}-{:04X}-{:04X}-{:04X}-{:04X}{:08X}", first, second >> 16U, second & 0xFFFFU,
                     third >> 16U, third & 0xFFFFU, fourth);
}

}  // namespace karno::platform
