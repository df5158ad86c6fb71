#pragma once
#include <cstdint>

namespace karno {

// Forced on, forced off or left to the user. The numbers are part of the interface.
enum class KarnoTristate : std::int32_t { On = 0, Off = 1, NotSet = 2 };

}  // namespace karno
