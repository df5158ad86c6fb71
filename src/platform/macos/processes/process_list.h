#pragma once
#include "platform/process_list.h"

namespace karno::platform {

// What libproc tells.
class MacProcessList final : public ProcessList {
 public:
  std::vector<RunningProcess> runningProcesses() const override;
};

}  // namespace karno::platform
