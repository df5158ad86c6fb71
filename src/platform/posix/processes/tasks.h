#pragma once
#include "platform/tasks.h"

namespace karno::platform {

inline constexpr int kRunningChildrenMax = 1024;
inline constexpr int kUnknownStatus = -1;

// Children by posix_spawn(). Each has a thread of its own that sleeps in the kernel until the child ends and
// then runs the handler; EAGAIN when kRunningChildrenMax are running. When another part of the process took
// the child's status away, the handler gets kUnknownStatus and a normal exit.
class PosixTasks final : public Tasks {
 public:
  Result<std::int32_t> launch(const TaskLaunch& task, TerminationHandler onTermination) override;
};

}  // namespace karno::platform
