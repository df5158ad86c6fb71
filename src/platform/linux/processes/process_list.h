#pragma once
#include "platform/process_list.h"

namespace karno::platform {

// What /proc tells. A process belongs to this machine root by the KARNO_MACHINE_ROOT that it was started
// with; without one, to the root that this user has by default.
class LinuxProcessList final : public ProcessList {
 public:
  std::vector<RunningProcess> runningProcesses() const override;
};

}  // namespace karno::platform
