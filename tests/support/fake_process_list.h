#pragma once
#include <vector>

#include "platform/process_list.h"

namespace karno::test {

// The processes that a test says run.
class FakeProcessList final : public platform::ProcessList {
 public:
  std::vector<platform::RunningProcess> runningProcesses() const override { return running; }

  std::vector<platform::RunningProcess> running;
};

}  // namespace karno::test
