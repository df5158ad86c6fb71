#pragma once
#include <mutex>

#include "platform/shell.h"

namespace karno::platform {

// popen() and pclose(): the line goes to the system's shell as it stands. The child gets what popen() lets it
// inherit; no other child of ours gets the pipe's descriptor.
class PopenShell final : public Shell {
 public:
  Result<std::unique_ptr<ShellPipe>> open(const std::string& line) override;

 private:
  // Between popen() and the mark on its descriptor, another popen() would hand the descriptor to its child.
  std::mutex opening_;
};

}  // namespace karno::platform
