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
  return processes_.start(task.executablePath, std::move(onTermination));
}

void FakeTasks::end(std::int32_t processIdentifier, int status, platform::TerminationReason reason) {
  if (!processes_.end(processIdentifier, {.terminationStatus = status, .terminationReason = reason}))
    ADD_FAILURE() << "no child with the process identifier " << processIdentifier << " is running";
}

}  // namespace karno::test
