#pragma once
#include <cstdlib>
#include <string>

namespace karno::platform {

// Empty for a variable that is not set.
inline std::string environmentVariable(const char* name) {
  const char* const value = std::getenv(name);
  return value == nullptr ? std::string() : value;
}

}  // namespace karno::platform
