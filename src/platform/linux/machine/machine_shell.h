#pragma once
#include "platform/shell.h"

namespace karno::platform {

// What popen() is on a Mac, in the machine of the machine root: its shell, its commands. The child inherits
// what popen() lets it inherit, but no pipe of another call.
class MachineShell final : public Shell {
 public:
  Result<std::unique_ptr<ShellPipe>> open(const std::string& line) override;
};

}  // namespace karno::platform
