#pragma once
#include <vector>

#include "fake_process_table.h"
#include "platform/process_list.h"

namespace karno::test {

class FakeProcessList final : public platform::ProcessList {
 public:
  explicit FakeProcessList(const FakeProcessTable& processes) : processes_(processes) {}

  std::vector<platform::RunningProcess> runningProcesses() const override { return processes_.running(); }

 private:
  const FakeProcessTable& processes_;
};

}  // namespace karno::test
