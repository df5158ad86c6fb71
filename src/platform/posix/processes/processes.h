#pragma once
#include "platform/processes.h"

namespace karno::platform {

class PosixProcesses final : public Processes {
 public:
  std::int32_t currentProcessIdentifier() const override;
  std::int32_t parentProcessIdentifier() const override;
  std::vector<std::string> arguments() const override;
  std::string name(std::int32_t processIdentifier) const override;
  int terminate(std::int32_t processIdentifier) override;
  WaitResult waitForChild(std::int32_t processIdentifier) override;
};

}  // namespace karno::platform
