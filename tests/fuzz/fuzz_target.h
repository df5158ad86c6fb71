#pragma once
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>

// One input. What must hold for every input is checked by mustHold().
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace karno::fuzz {

// Ends the process in a way that a fuzzer takes for a finding.
inline void mustHold(bool condition, const char* what) {
  if (condition) return;
  std::fprintf(stderr, "does not hold: %s\n", what);
  std::abort();
}

}  // namespace karno::fuzz
