#pragma once
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace karno::platform {

// What the kernel knows about processes. Safe from any thread.
class Processes {
 public:
  virtual ~Processes() = default;

  virtual std::int32_t currentProcessIdentifier() const = 0;
  virtual std::int32_t parentProcessIdentifier() const = 0;

  // The launcher's whole argument list, the program path at index 0 included.
  virtual std::vector<std::string> arguments() const = 0;

  // The kernel's short name of a process; empty when there is no such process or it may not be asked.
  virtual std::string name(std::int32_t processIdentifier) const = 0;
};

}  // namespace karno::platform
