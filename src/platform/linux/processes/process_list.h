#pragma once
#include "platform/process_list.h"

namespace karno::platform {

// What /proc tells. A process belongs to this machine root when it was started with the same
// KARNO_MACHINE_ROOT, or without one as well.
class LinuxProcessList final : public ProcessList {
 public:
  std::vector<RunningProcess> runningProcesses() const override;
};

}  // namespace karno::platform
