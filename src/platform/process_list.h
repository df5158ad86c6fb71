#pragma once
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "platform/date.h"

namespace karno::platform {

struct RunningProcess {
  std::int32_t processIdentifier = 0;
  std::int32_t parentProcessIdentifier = 0;
  std::string executablePath;     // absolute, symbolic links resolved
  std::optional<Date> startDate;  // absent when the kernel does not tell it
};

// The processes of this user, and on Linux of this machine root. Safe from any thread.
class ProcessList {
 public:
  virtual ~ProcessList() = default;

  // Those that run at this moment, in ascending order of their identifiers. A process whose executable cannot
  // be learnt, such as one that has ended and was not reaped, is left out.
  virtual std::vector<RunningProcess> runningProcesses() const = 0;
};

}  // namespace karno::platform
