#include "fake_tasks.h"

#include <gtest/gtest.h>

namespace karno::test {

platform::Result<std::int32_t> FakeTasks::launch(const platform::TaskLaunch& task,
                                                 TerminationHandler onTermination) {
  launches_.push_back({task.executablePath, task.arguments, scheduler_.currentThreadName()});
  if (!failures_.empty()) {
    platform::Error error = std::move(failures_.front());
    failures_.pop_front();
    return error;
  }
  running_[nextProcessIdentifier_] = std::move(onTermination);
  return nextProcessIdentifier_++;
}

void FakeTasks::end(std::int32_t processIdentifier, int status, platform::TerminationReason reason) {
  auto ended = running_.extract(processIdentifier);
  if (ended.empty()) {
    ADD_FAILURE() << "no child with the process identifier " << processIdentifier << " is running";
    return;
  }
  scheduler_.addThread("task termination", [handler = std::move(ended.mapped()), status, reason] {
    if (handler) handler({.terminationStatus = status, .terminationReason = reason});
  });
}

std::vector<std::int32_t> FakeTasks::running() const {
  std::vector<std::int32_t> result;
  for (const auto& [processIdentifier, handler] : running_) result.push_back(processIdentifier);
  return result;
}

}  // namespace karno::test
