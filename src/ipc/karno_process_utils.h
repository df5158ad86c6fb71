#pragma once
#include <cstdint>
#include <string>

namespace karno {

// Process control. Stateless; safe from any thread.
class KarnoProcessUtils {
 public:
  // The kernel's short name of the process, or "Unknown".
  static std::string stringForProcessNameForPid(std::int32_t processIdentifier);
};

}  // namespace karno
